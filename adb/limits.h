// How long a blocking call may wait, and what ends its wait earlier.
#ifndef DAROKLEIM_ADB_LIMITS_H
#define DAROKLEIM_ADB_LIMITS_H

#include <chrono>

#include "adb/result.h"

namespace darokleim::adb {

using Clock = std::chrono::steady_clock;

// Ends the waits of calls that it was given to. One object may be given to many calls and threads at once; it must
// outlive them.
class Interrupt {
 public:
  virtual ~Interrupt() = default;

  virtual bool IsSet() const = 0;

  // A descriptor that is readable from the moment when the interrupt is set: it wakes a wait at once. -1: none.
  virtual int descriptor() const { return -1; }

  // For an interrupt without a descriptor, how long a wait may last before IsSet() is asked again. Negative: for ever.
  virtual std::chrono::milliseconds longest_wait() const { return std::chrono::milliseconds(-1); }
};

// Passed to every blocking call; the default waits for ever. A point in time, so that it may be passed on to all the
// calls of which a larger one consists.
struct Limits {
  Clock::time_point deadline = Clock::time_point::max();
  const Interrupt* interrupt = nullptr;
};

// Fails with kCancelled or kTimedOut once one of the limits is reached.
Status Check(const Limits& limits);

// Waits until one of `events` (as of poll) or an error condition holds of `fd`, and gives those that do. With an `fd` of
// -1 it waits for the limits alone.
Result<short> WaitFor(int fd, short events, const Limits& limits);

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_LIMITS_H

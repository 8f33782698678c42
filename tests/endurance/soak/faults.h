// What happens to the phones, what a call may come to then, and when it happened.
#ifndef DAROKLEIM_TESTS_ENDURANCE_SOAK_FAULTS_H
#define DAROKLEIM_TESTS_ENDURANCE_SOAK_FAULTS_H

#include <chrono>
#include <deque>
#include <mutex>
#include <vector>

#include "tests/endurance/soak/codes.h"

namespace darokleim::soak {

using Clock = std::chrono::steady_clock;

enum class Fault {
  kUnplugged,
  kLocked,
  kOffline,
  kFull,
  kSlow,
  kHung,
  kBreaks,
  kRefusesApps,
  kReboots,
  kServerStopped,
  kServerKilled,
};

struct FaultRule {
  Fault fault;
  const char* name;
  // How long after its end a call may still meet it.
  std::chrono::milliseconds lingers;
  // The codes, besides DK_OK, of a call at whose time the phone has the fault.
  Codes may_be;
  // The only codes of a call that begins and ends while nothing but this fault is in effect; empty: as above.
  Codes must_be;
};

const FaultRule& RuleOf(Fault fault);

// A fault from the moment when it is being caused to the moment when it is mended.
struct FaultSpan {
  Fault fault;
  Clock::time_point begun;
  Clock::time_point in_effect = Clock::time_point::max();
  Clock::time_point mending = Clock::time_point::max();
  Clock::time_point ended = Clock::time_point::max();
};

// The faults of one phone, or of the server: one after the other.
class FaultHistory {
 public:
  // Each step of the latest fault, in this order.
  void Begin(Fault fault);
  void TakeEffect();
  void Mend();
  void End();

  bool IsNow(Fault fault) const;
  std::vector<FaultSpan> During(Clock::time_point begin, Clock::time_point end) const;

 private:
  mutable std::mutex mutex_;
  std::deque<FaultSpan> spans_;
};

struct FaultHistories {
  explicit FaultHistories(std::size_t phones) : of_phone(phones) {}
  std::deque<FaultHistory> of_phone;
  FaultHistory of_server;
};

}  // namespace darokleim::soak

#endif  // DAROKLEIM_TESTS_ENDURANCE_SOAK_FAULTS_H

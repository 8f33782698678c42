// From a callback on a thread of the client's to the thread of the command.
#ifndef DAROKLEIM_TOOLS_CLI_EVENT_QUEUE_H
#define DAROKLEIM_TOOLS_CLI_EVENT_QUEUE_H

#include <poll.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/host/wake_up.h"

namespace darokleim::cli {

// Holds a limited number of events: where the command is slower, the callback waits. Declare it before the watch or log that
// fills it, so that it is still there when that stops.
template <typename Event>
class EventQueue {
 public:
  // For the callback. Dropped when the queue is closed.
  void Push(Event event) {
    std::unique_lock lock(mutex_);
    has_room_.wait(lock, [this] { return closed_ || events_.size() < kMost; });
    if (closed_) return;
    events_.push_back(std::move(event));
    wake_up_.Wake();
  }
  // For the callback: no event follows. Pop returns those that are there first.
  void End() {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    wake_up_.Wake();
  }

  // For the command: the next event, nothing after the end. Throws Cancelled after a signal, and ToolError when the time is over.
  std::optional<Event> Pop() {
    for (;;) {
      CheckCancelled();
      {
        const std::lock_guard lock(mutex_);
        wake_up_.Clear();
        if (!events_.empty()) {
          Event event = std::move(events_.front());
          events_.pop_front();
          has_room_.notify_one();
          if (!events_.empty()) wake_up_.Wake();
          return event;
        }
        if (ended_) return std::nullopt;
      }
      pollfd input{wake_up_.descriptor(), POLLIN, 0};
      poll(&input, 1, -1);
    }
  }
  // For the command: lets a callback that waits go on.
  void Close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    has_room_.notify_all();
  }

 private:
  static constexpr std::size_t kMost = 1000;

  WakeUp wake_up_;
  std::mutex mutex_;
  std::condition_variable has_room_;
  std::deque<Event> events_;
  bool ended_ = false, closed_ = false;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_EVENT_QUEUE_H

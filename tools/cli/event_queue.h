// From a callback on a thread of the client's to the thread of the command.
#ifndef DAROKLEIM_TOOLS_CLI_EVENT_QUEUE_H
#define DAROKLEIM_TOOLS_CLI_EVENT_QUEUE_H

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

#include "base/unique_fd.h"
#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {

// Holds a limited number of events: where the command is slower, the callback waits. Declare it before the watch or log that
// fills it, so that it is still there when that stops.
template <typename Event>
class EventQueue {
 public:
  EventQueue() {
    int ends[2];
    if (pipe(ends) != 0) throw ToolError("cannot wait for events: " + SystemErrorText(errno) + ".");
    reading_ = base::UniqueFd(ends[0]);
    writing_ = base::UniqueFd(ends[1]);
    for (const int end : ends) {
      fcntl(end, F_SETFD, FD_CLOEXEC);
      fcntl(end, F_SETFL, O_NONBLOCK);
    }
  }

  // For the callback. Dropped when the queue is closed.
  void Push(Event event) {
    std::unique_lock lock(mutex_);
    has_room_.wait(lock, [this] { return closed_ || events_.size() < kMost; });
    if (closed_) return;
    events_.push_back(std::move(event));
    Wake();
  }
  // For the callback: no event follows. Pop returns those that are there first.
  void End() {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    Wake();
  }

  // For the command: the next event, nothing after the end. Throws Cancelled after a signal, and ToolError when the time is over.
  std::optional<Event> Pop() {
    for (;;) {
      CheckCancelled();
      {
        const std::lock_guard lock(mutex_);
        char byte;
        [[maybe_unused]] const ssize_t ignored = read(reading_.get(), &byte, 1);
        if (!events_.empty()) {
          Event event = std::move(events_.front());
          events_.pop_front();
          has_room_.notify_one();
          if (!events_.empty()) Wake();
          return event;
        }
        if (ended_) return std::nullopt;
      }
      pollfd input{reading_.get(), POLLIN, 0};
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

  // A full pipe wakes as well.
  void Wake() { [[maybe_unused]] const ssize_t ignored = write(writing_.get(), "", 1); }

  base::UniqueFd reading_, writing_;
  std::mutex mutex_;
  std::condition_variable has_room_;
  std::deque<Event> events_;
  bool ended_ = false, closed_ = false;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_EVENT_QUEUE_H

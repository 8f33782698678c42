#ifndef DAROKLEIM_TESTS_CLIENT_RECORDER_H
#define DAROKLEIM_TESTS_CLIENT_RECORDER_H

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <darokleim/client.hpp>
#include <mutex>
#include <string>
#include <vector>

namespace darokleim::test {

// What a watch reports, as text.
class Recorder {
 public:
  void operator()(dk_change change, const dk::DeviceInfo* info) {
    const std::lock_guard lock(mutex_);
    static const char* const kNames[] = {"?", "added", "changed", "removed", "server lost", "server found"};
    events_.push_back(info == nullptr ? kNames[change]
                                      : kNames[change] + (" " + info->serial + " " + info->state_text));
    changed_.notify_all();
  }
  // Whether the event has come, or comes soon, so many times.
  bool Await(const std::string& event, long times = 1) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(20),
                             [&] { return std::count(events_.begin(), events_.end(), event) >= times; });
  }
  std::vector<std::string> events() {
    const std::lock_guard lock(mutex_);
    return events_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<std::string> events_;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_CLIENT_RECORDER_H

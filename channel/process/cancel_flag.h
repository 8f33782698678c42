// What ends a command early: the caller's cancel flag, a plain bool that another thread may set at any time, and the
// limit in time that the user may have set.
#ifndef DAROKLEIM_CHANNEL_PROCESS_CANCEL_FLAG_H
#define DAROKLEIM_CHANNEL_PROCESS_CANCEL_FLAG_H

#include <algorithm>
#include <chrono>
#include <optional>

namespace darokleim::channel {

class CancelFlag {
 public:
  using Clock = std::chrono::steady_clock;

  // The limit counts from now on.
  explicit CancelFlag(const bool* flag, std::optional<std::chrono::milliseconds> time_limit = std::nullopt)
      : flag_(flag) {
    if (time_limit) end_ = Clock::now() + *time_limit;
  }

  bool CanBeSet() const { return flag_ != nullptr || end_; }
  bool IsSet() const { return IsSetByCaller() || TimeIsUp(); }
  bool TimeIsUp() const { return end_ && Clock::now() >= *end_; }

  // How long a wait may last before IsSet must be checked again, in milliseconds; -1: no limit.
  int LongestWait() const {
    if (!end_) return flag_ != nullptr ? kCheckInterval : -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*end_ - Clock::now()).count();
    const auto longest = flag_ != nullptr ? kCheckInterval : kLongestSleep;
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, longest));
  }

 private:
  static constexpr int kCheckInterval = 8;
  static constexpr int kLongestSleep = 60'000;

  bool IsSetByCaller() const { return flag_ != nullptr && __atomic_load_n(flag_, __ATOMIC_ACQUIRE); }

  const bool* flag_;
  std::optional<Clock::time_point> end_;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_CANCEL_FLAG_H

// The caller's cancel flag: a plain bool that another thread may set at any time.
#ifndef DAROKLEIM_CHANNEL_PROCESS_CANCEL_FLAG_H
#define DAROKLEIM_CHANNEL_PROCESS_CANCEL_FLAG_H

namespace darokleim::channel {

class CancelFlag {
 public:
  explicit CancelFlag(const bool* flag) : flag_(flag) {}

  bool CanBeSet() const { return flag_ != nullptr; }
  bool IsSet() const { return flag_ != nullptr && __atomic_load_n(flag_, __ATOMIC_ACQUIRE); }

  // How long a wait may last before the flag must be checked again, in milliseconds; -1: no limit.
  int LongestWait() const { return CanBeSet() ? 8 : -1; }

 private:
  const bool* flag_;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_CANCEL_FLAG_H

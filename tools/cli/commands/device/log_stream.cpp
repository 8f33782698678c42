#include "tools/cli/commands/device/log_stream.h"

#include <darokleim.h>

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <string_view>

#include "tools/cli/cancel_on_signal.h"

namespace darokleim::cli {
namespace {

constexpr auto kLookForCancel = std::chrono::milliseconds(20);

// A stream from its start to its last call, which is made on another thread.
class LogStream {
 public:
  explicit LogStream(LogLines& lines) : lines_(lines) {}
  ~LogStream() { Stop(); }
  LogStream(const LogStream&) = delete;
  LogStream& operator=(const LogStream&) = delete;

  int Start(const Device& device, const std::string& filter) {
    const int code =
        AdbLogcatAnsync(device.serial(), filter.c_str(), reinterpret_cast<void*>(&OnOutput), this, &stop_);
    if (code != ADB_RESULT_OK) status_ = code;
    return code;
  }

  // Until it ends, or Ctrl-C. The status that it ended with; nothing after Ctrl-C.
  std::optional<int> Wait() {
    while (!IsCancelled()) {
      std::unique_lock lock(mutex_);
      if (ended_.wait_for(lock, kLookForCancel, [this] { return status_.has_value(); })) break;
    }
    const bool ended_by_itself = !IsCancelled();
    Stop();
    if (failure_) std::rethrow_exception(failure_);
    lines_.Finish();
    return ended_by_itself ? status_ : std::nullopt;
  }

 private:
  static void OnOutput(void* context, const char* data, int length) {
    auto* stream = static_cast<LogStream*>(context);
    if (data == nullptr) {
      stream->End(length);
    } else {
      stream->Print({data, static_cast<std::size_t>(length)});
    }
  }

  void Print(std::string_view piece) {
    if (failure_) return;
    try {
      lines_.Add(piece);
    } catch (...) {
      failure_ = std::current_exception();
      RequestStop();
    }
  }

  void End(int status) {
    const std::lock_guard lock(mutex_);
    status_ = status;
    ended_.notify_all();
  }

  void RequestStop() { __atomic_store_n(&stop_, true, __ATOMIC_RELAXED); }

  void Stop() {
    RequestStop();
    std::unique_lock lock(mutex_);
    ended_.wait(lock, [this] { return status_.has_value(); });
  }

  LogLines& lines_;
  bool stop_ = false;
  std::mutex mutex_;
  std::condition_variable ended_;
  std::optional<int> status_;   // after the last call
  std::exception_ptr failure_;  // of the output; written by the stream's thread, read after the last call
};

}  // namespace

bool FollowLog(const Device& device, const std::string& filter, LogLines& lines) {
  LogStream stream(lines);
  device.Check(stream.Start(device, filter), "show the log");
  const auto status = stream.Wait();
  if (status) device.Check(*status, "continue the log");
  return status.has_value();
}

}  // namespace darokleim::cli

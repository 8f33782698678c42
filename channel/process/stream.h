// A command whose output is passed on piece by piece while it runs.
#ifndef DAROKLEIM_CHANNEL_PROCESS_STREAM_H
#define DAROKLEIM_CHANNEL_PROCESS_STREAM_H

#include <signal.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "channel/channel_log.h"
#include "channel/output/adb_messages.h"
#include "channel/output/output_sink.h"
#include "channel/output/stream_filter.h"
#include "channel/process/cancel_flag.h"
#include "channel/process/child.h"
#include "channel/process/read_output.h"
#include "channel/settings.h"
#include "channel/status.h"

namespace darokleim::channel {

// The caller's function that receives the output. Called on the stream's own thread with one piece after the other; the
// last call has null data and the final status in length.
struct OutputReceiver {
  using Function = void (*)(void* context, const char* data, int length);

  Function function = nullptr;  // null: the output is discarded
  void* context = nullptr;
};

class Stream final : public OutputSink {
 public:
  using Clock = std::chrono::steady_clock;

  Stream(const Settings& settings, const char* arguments, const CancelFlag& cancel,
         const OutputReceiver& receiver);

  // kDelivered when adb and the stream's thread run; otherwise the status that says why not.
  Status Start();

  // For other threads: send SIGTERM or SIGKILL to adb. The stream then finishes with kCancelled.
  void Stop() { End(SIGTERM); }
  void Kill() { End(SIGKILL); }

  bool Finished();
  bool WaitUntilFinished(Clock::time_point time);
  // Only after the stream has finished; returns at once then.
  void Join() { thread_.join(); }
  bool IsOnThisThread() const { return thread_.get_id() == std::this_thread::get_id(); }

 private:
  std::span<char> Room() override;
  void Commit(size_t count) override;

  void RunToEnd();
  void ReleaseResources();
  int StatusAfter(ReadingEnd end, const ExitOutcome& exit) const;
  // Passes on what filter returns, unless it runs out of memory.
  template <typename Filter>
  void DeliverFrom(Filter filter);
  void Deliver(std::string_view piece);
  void End(int signal_number);

  const std::string adb_path_;
  const std::string arguments_;
  const Command command_;
  const CancelFlag cancel_;
  const OutputReceiver receiver_;
  const CommandTimer timer_;

  base::UniqueFd output_;
  std::optional<Child> child_;  // reset under mutex_: other threads signal it
  std::thread thread_;
  std::atomic<bool> stopping_ = false;

  // Used by the stream's thread only.
  std::vector<char> piece_;
  StreamFilter filter_;
  FailureLineScanner failures_;
  long long bytes_ = 0;
  bool out_of_memory_ = false;

  std::mutex mutex_;  // guards child_ and finished_
  std::condition_variable finished_change_;
  bool finished_ = false;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_STREAM_H

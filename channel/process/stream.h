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
#include "channel/direct/wait_limits.h"
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

  // kDelivered when the stream's thread runs and, where the command cannot go without adb, adb; otherwise the status that
  // says why not.
  Status Start();

  // For other threads: end the connection, or send SIGTERM or SIGKILL to adb. The stream then finishes with kCancelled.
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

  template <typename Body>
  Status StartThread(Body body);
  Status StartChild();
  // On the stream's thread.
  void RunThroughAdb();
  void RunDirectly();
  void RunThroughAdbAfterAll();
  void Finish(Route route, int status);
  void ReleaseResources();
  // Passes on what filter returns, unless it runs out of memory.
  template <typename Filter>
  void DeliverFrom(Filter filter);
  void Deliver(std::string_view piece);
  void End(int signal_number);

  const std::string adb_path_;
  const Mode mode_;
  const std::string arguments_;
  const Command command_;
  const CancelFlag cancel_;
  const OutputReceiver receiver_;
  const CommandTimer timer_;

  base::UniqueFd output_;
  // Set and reset under mutex_ while the thread runs: other threads end the command with them.
  std::optional<Child> child_;
  std::optional<direct::StreamInterrupt> interrupt_;
  std::thread thread_;
  std::atomic<bool> stopping_ = false;

  // Used by the stream's thread only.
  std::vector<char> piece_;
  StreamFilter filter_;
  FailureLineScanner failures_;
  long long bytes_ = 0;
  bool out_of_memory_ = false;

  std::mutex mutex_;  // guards child_, interrupt_ and finished_
  std::condition_variable finished_change_;
  bool finished_ = false;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_STREAM_H

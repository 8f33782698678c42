#include "channel/process/stream.h"

#include <exception>
#include <new>

#include "base/signals_blocked.h"
#include "channel/output/adb_messages.h"
#include "channel/process/start_adb.h"

namespace darokleim::channel {
namespace {

constexpr size_t kPieceSize = 64 * 1024;

}  // namespace

Stream::Stream(const Settings& settings, const char* arguments, const CancelFlag& cancel,
               const OutputReceiver& receiver)
    : adb_path_(settings.adb_path),
      arguments_(arguments),
      command_(ReadCommand(arguments, settings.assist())),
      cancel_(cancel),
      receiver_(receiver),
      piece_(kPieceSize),
      filter_(command_) {}

Status Stream::Start() {
  base::Spawned spawned;
  const Status started = StartAdb(adb_path_, command_.words, &spawned);
  if (started != kDelivered) return started;
  output_ = std::move(spawned.output);
  child_.emplace(spawned.pid);
  try {
    const base::SignalsBlocked blocked;
    thread_ = std::thread([this] { RunToEnd(); });
  } catch (const std::exception&) {  // no thread, or no memory to start one
    Terminate(&*child_);
    child_->Reap();
    return kSystemRefused;
  }
  return kDelivered;
}

void Stream::RunToEnd() {
  const ReadingEnd end = ReadOutput(&*child_, output_.get(), cancel_, this);
  if (end != ReadingEnd::kOutputComplete) Terminate(&*child_);
  const ExitOutcome exit = child_->Reap();
  if (end == ReadingEnd::kOutputComplete && !stopping_) DeliverFrom([this] { return filter_.Finish(); });

  const int status = StatusAfter(end, exit);
  timer_.Log(arguments_.c_str(), status, bytes_);
  ReleaseResources();
  if (receiver_.function != nullptr) receiver_.function(receiver_.context, nullptr, status);

  const std::lock_guard lock(mutex_);
  finished_ = true;
  finished_change_.notify_all();
}

// The stream object itself is kept until another stream starts or the library is unloaded.
void Stream::ReleaseResources() {
  output_.Reset();
  std::vector<char>().swap(piece_);
  const std::lock_guard lock(mutex_);
  child_.reset();
}

int Stream::StatusAfter(ReadingEnd end, const ExitOutcome& exit) const {
  if (stopping_ || end == ReadingEnd::kCancelled) return kCancelled;
  if (out_of_memory_) return kSystemRefused;
  return StatusOf(command_, exit, [this] { return failures_.Found(); });
}

std::span<char> Stream::Room() {
  if (stopping_ || out_of_memory_) return {};
  return piece_;
}

void Stream::Commit(size_t count) {
  const std::string_view piece(piece_.data(), count);
  DeliverFrom([&] {
    failures_.Scan(piece);
    return filter_.Pass(piece);
  });
}

// Nothing may throw on the stream's own thread.
template <typename Filter>
void Stream::DeliverFrom(Filter filter) {
  std::string_view passed;
  try {
    passed = filter();
  } catch (const std::bad_alloc&) {
    out_of_memory_ = true;
  }
  Deliver(passed);
}

void Stream::Deliver(std::string_view piece) {
  bytes_ += static_cast<long long>(piece.size());
  if (piece.empty() || receiver_.function == nullptr) return;
  receiver_.function(receiver_.context, piece.data(), static_cast<int>(piece.size()));
}

void Stream::End(int signal_number) {
  stopping_ = true;
  const std::lock_guard lock(mutex_);
  if (child_) child_->Signal(signal_number);
}

bool Stream::Finished() {
  const std::lock_guard lock(mutex_);
  return finished_;
}

bool Stream::WaitUntilFinished(Clock::time_point time) {
  std::unique_lock lock(mutex_);
  return finished_change_.wait_until(lock, time, [this] { return finished_; });
}

}  // namespace darokleim::channel

#include "channel/process/stream.h"

#include <exception>
#include <new>

#include "base/signals_blocked.h"
#include "channel/direct/form.h"
#include "channel/direct/run.h"
#include "channel/output/adb_messages.h"
#include "channel/process/start_adb.h"

namespace darokleim::channel {
namespace {

constexpr size_t kPieceSize = 64 * 1024;

}  // namespace

Stream::Stream(const Settings& settings, const char* arguments, const CancelFlag& cancel,
               const OutputReceiver& receiver)
    : adb_path_(settings.adb_path),
      mode_(settings.mode),
      arguments_(arguments),
      command_(ReadCommand(arguments, settings.assist())),
      cancel_(cancel),
      receiver_(receiver),
      piece_(kPieceSize),
      filter_(command_) {}

Status Stream::Start() {
  if (mode_ == Mode::kDirect && direct::MatchForm(command_)) {
    interrupt_.emplace(cancel_);
    return StartThread([this] { RunDirectly(); });
  }
  const Status started = StartChild();
  if (started != kDelivered) return started;
  const Status running = StartThread([this] { RunThroughAdb(); });
  if (running != kDelivered) {
    Terminate(&*child_);
    child_->Reap();
  }
  return running;
}

template <typename Body>
Status Stream::StartThread(Body body) {
  try {
    const base::SignalsBlocked blocked;
    thread_ = std::thread(body);
    return kDelivered;
  } catch (const std::exception&) {  // no thread, or no memory to start one
    return kSystemRefused;
  }
}

Status Stream::StartChild() {
  base::Spawned spawned;
  const Status started = StartAdb(adb_path_, command_.words, &spawned);
  if (started != kDelivered) return started;
  output_ = std::move(spawned.output);
  child_.emplace(spawned.pid);
  return kDelivered;
}

void Stream::RunThroughAdb() {
  const ReadingEnd end = ReadOutput(&*child_, output_.get(), cancel_, this);
  if (end != ReadingEnd::kOutputComplete) Terminate(&*child_);
  const ExitOutcome exit = child_->Reap();
  if (end == ReadingEnd::kOutputComplete && !stopping_) DeliverFrom([this] { return filter_.Finish(); });
  const bool cancelled = end == ReadingEnd::kCancelled;
  Finish(Route::kAdb, cancelled ? int{kCancelled} : StatusOf(command_, exit, failures_));
}

void Stream::RunDirectly() {
  std::optional<direct::Ending> ending;
  try {
    ending = direct::Run(command_, {.interrupt = &*interrupt_}, this);
  } catch (const std::exception&) {
    ending = {direct::Ending::kSystemRefused};
  }
  if (!ending) return RunThroughAdbAfterAll();
  if (ending->kind == direct::Ending::kExited && !stopping_) DeliverFrom([this] { return filter_.Finish(); });
  Finish(Route::kDirect, direct::StatusOf(command_, *ending, failures_));
}

void Stream::RunThroughAdbAfterAll() {
  Status started = kCancelled;
  try {
    const std::lock_guard lock(mutex_);
    if (!stopping_) started = StartChild();
  } catch (const std::exception&) {
    started = kSystemRefused;
  }
  if (started == kDelivered) return RunThroughAdb();
  Finish(Route::kAdb, started);
}

void Stream::Finish(Route route, int status) {
  if (stopping_) {
    status = kCancelled;
  } else if (out_of_memory_) {
    status = kSystemRefused;
  }
  timer_.Log(arguments_.c_str(), route, status, bytes_);
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
  interrupt_.reset();
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
  if (interrupt_) interrupt_->Set();
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

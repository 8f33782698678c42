#include "channel/process/stream_registry.h"

#include <unistd.h>

#include <exception>
#include <list>
#include <memory>

namespace darokleim::channel {
namespace {

using StreamList = std::list<std::unique_ptr<Stream>>;

class Registry {
 public:
  ~Registry() { StopAll(); }

  int Start(const Settings& settings, const char* arguments, const CancelFlag& cancel,
            const OutputReceiver& receiver) {
    StreamList added;
    added.push_back(std::make_unique<Stream>(settings, arguments, cancel, receiver));
    const std::lock_guard lock(mutex_);
    if (closed_) return kNotInitialised;
    if (owner_ != getpid()) Abandon(&streams_);
    owner_ = getpid();
    JoinFinished();
    // Listed before it runs: its receiver may end the process in its first call.
    streams_.splice(streams_.end(), added);
    const Status started = Started(streams_.back().get());
    if (started != kDelivered) streams_.pop_back();
    return started;
  }

 private:
  static Status Started(Stream* stream) try { return stream->Start(); } catch (const std::exception&) {
    return kSystemRefused;
  }

  void JoinFinished() {
    streams_.remove_if([](const std::unique_ptr<Stream>& stream) {
      if (!stream->Finished()) return false;
      stream->Join();
      return true;
    });
  }

  // A thread must not continue in code that is being unloaded, so each is waited for. But a receiver that does not
  // return (it may wait for the very thread that ends the process) must not keep a process from exiting.
  void StopAll() {
    constexpr std::chrono::milliseconds kGrace{40};
    constexpr std::chrono::seconds kReceiverTimeout{3};

    if (owner_ != getpid()) return Abandon(&streams_);
    StreamList streams = Close();
    const Stream::Clock::time_point start = Stream::Clock::now();
    for (const auto& stream : streams) stream->Stop();
    for (const auto& stream : streams) {
      if (stream->IsOnThisThread() || !stream->WaitUntilFinished(start + kGrace)) stream->Kill();
    }
    streams.remove_if([&](const std::unique_ptr<Stream>& stream) {
      if (stream->IsOnThisThread() || !stream->WaitUntilFinished(start + kReceiverTimeout)) return false;
      stream->Join();
      return true;
    });
    Abandon(&streams);
  }

  StreamList Close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    return std::move(streams_);
  }

  // For streams whose receiver does not return, and in a fork for the streams of the parent: a fork has neither their
  // threads nor their children.
  static void Abandon(StreamList* streams) {
    for (auto& stream : *streams) static_cast<void>(stream.release());
    streams->clear();
  }

  std::mutex mutex_;
  StreamList streams_;
  std::atomic<pid_t> owner_ = -1;  // the process whose streams these are
  bool closed_ = false;
};

Registry registry;

}  // namespace

int StartStream(const Settings& settings, const char* arguments, const CancelFlag& cancel,
                const OutputReceiver& receiver) {
  if (cancel.IsSet()) return kCancelled;
  return registry.Start(settings, arguments, cancel, receiver);
}

}  // namespace darokleim::channel

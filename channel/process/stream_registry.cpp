#include "channel/process/stream_registry.h"

#include <unistd.h>

#include <atomic>
#include <exception>
#include <list>
#include <memory>
#include <mutex>

namespace darokleim::channel {
namespace {

using StreamList = std::list<std::unique_ptr<Stream>>;

// The streams of one process.
class Registry {
 public:
  // A fork has neither the threads nor the children of its parent's streams, and their list may be incomplete.
  ~Registry() {
    if (IsOfThisProcess()) {
      StopAll();
    } else {
      static_cast<void>(streams_.release());
    }
  }

  bool IsOfThisProcess() const { return owner_ == getpid(); }

  Status Start(const Settings& settings, const char* arguments, const CancelFlag& cancel,
               const OutputReceiver& receiver) {
    StreamList added;
    added.push_back(std::make_unique<Stream>(settings, arguments, cancel, receiver));
    const std::lock_guard lock(mutex_);
    if (closed_) return kNotInitialised;
    JoinFinished();
    // Listed before it runs: its receiver may end the process in its first call.
    streams_->splice(streams_->end(), added);
    const Status started = Started(streams_->back().get());
    if (started != kDelivered) streams_->pop_back();
    return started;
  }

  // A thread must not continue in code that is being unloaded, so each is waited for. But a receiver that does not
  // return (it may wait for the very thread that ends the process) must not keep a process from exiting.
  void StopAll() {
    constexpr std::chrono::milliseconds kGrace{40};
    constexpr std::chrono::seconds kReceiverTimeout{3};

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

 private:
  static Status Started(Stream* stream) try { return stream->Start(); } catch (const std::exception&) {
    return kSystemRefused;
  }

  void JoinFinished() {
    streams_->remove_if([](const std::unique_ptr<Stream>& stream) {
      if (!stream->Finished()) return false;
      stream->Join();
      return true;
    });
  }

  StreamList Close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    return std::move(*streams_);
  }

  // For streams whose receiver does not return.
  static void Abandon(StreamList* streams) {
    for (auto& stream : *streams) static_cast<void>(stream.release());
    streams->clear();
  }

  const pid_t owner_ = getpid();
  std::mutex mutex_;
  std::unique_ptr<StreamList> streams_ = std::make_unique<StreamList>();
  bool closed_ = false;
};

Registry of_first_process;
std::atomic<Registry*> current = &of_first_process;

// At unload and at exit of a fork; that of the first process stops its streams itself.
struct ForkCloser {
  ~ForkCloser() {
    Registry* const registry = current;
    if (registry != &of_first_process && registry->IsOfThisProcess()) registry->StopAll();
  }
} fork_closer;

// A fork gets a registry of its own: the mutex of its parent's may have been locked by a thread that the fork does not
// have.
Registry* RegistryOfThisProcess() {
  Registry* registry = current;
  while (!registry->IsOfThisProcess()) {
    auto own = std::make_unique<Registry>();
    if (current.compare_exchange_strong(registry, own.get())) return own.release();
  }
  return registry;
}

}  // namespace

int StartStream(const Settings& settings, const char* arguments, const CancelFlag& cancel,
                const OutputReceiver& receiver) {
  if (cancel.IsSet()) return kCancelled;
  return RegistryOfThisProcess()->Start(settings, arguments, cancel, receiver);
}

}  // namespace darokleim::channel

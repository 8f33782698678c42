// A thread of the library that calls the caller back, and its end.
#ifndef DAROKLEIM_CLIENT_WORKER_H
#define DAROKLEIM_CLIENT_WORKER_H

#include <unistd.h>

#include <future>
#include <memory>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include "adb/cancel_token.h"
#include "base/signals_blocked.h"
#include "client/error.h"

namespace darokleim::client {

// What a watch or a log is made of. Its owner frees it through Stop(), from any thread, the worker's own included.
class Worker {
 public:
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  // Starts the thread, which runs Work() once.
  Status Start(std::string_view what) {
    auto token = adb::CancelToken::Create();
    if (!token.ok()) return FromAdb(token.error(), what, "");
    stop_ = std::move(*token);
    // The first callback may stop the worker: it must find thread_ in place, and nothing of the worker is touched after it.
    std::promise<void> ready;
    try {
      const base::SignalsBlocked blocked;
      thread_ = std::thread([this, started = ready.get_future()] {
        started.wait();
        Run();
      });
    } catch (const std::system_error& refused) {
      return FromHostErrno(refused.code().value(), what, "");
    }
    ready.set_value();
    return {};
  }

  // Ends and frees the worker. No callback runs after it has returned; when it is called from within one, none after that. In a
  // fork, which does not have the thread, it does nothing.
  static void Stop(Worker* worker) {
    if (worker->owner_ != getpid()) return;
    worker->stop_->Set();
    if (worker->is_own_thread()) {
      worker->frees_itself_ = true;
      worker->thread_.detach();
      return;
    }
    worker->thread_.join();
    delete worker;
  }

 protected:
  Worker() = default;
  virtual ~Worker() = default;

  // Nothing may leave it.
  virtual void Work() = 0;

  // The Work() of a worker that reports its end: `serve` returns a Status, and `end` takes the code and the error of it, or null.
  // A stop is no error.
  template <typename Serve, typename End>
  void ServeToEnd(Serve serve, End end) {
    try {
      const Status status = serve();
      if (stopping() || status.ok()) return end(DK_OK, nullptr);
      const dk_error error{status.error()};
      end(error.error.code, &error);
    } catch (const std::bad_alloc&) {
      end(stopping() ? DK_OK : DK_OUT_OF_MEMORY, nullptr);
    }
  }

  // Whether the caller is one of its callbacks.
  bool is_own_thread() const { return thread_.get_id() == std::this_thread::get_id(); }
  bool stopping() const { return stop_->IsSet(); }
  // Whether a callback of the worker has stopped it, so that there may be no other. To be asked on the thread itself.
  bool stopped_by_callback() const { return frees_itself_; }
  adb::Limits limits() const {
    adb::Limits limits;
    limits.interrupt = stop_.get();
    return limits;
  }

 private:
  void Run() {
    Work();
    if (frees_itself_) delete this;
  }

  const pid_t owner_ = getpid();
  std::unique_ptr<adb::CancelToken> stop_;
  std::thread thread_;
  bool frees_itself_ = false;  // written and read on the thread itself
};

// Starts a worker for the caller, who ends it by Stop(). `handle` holds it before its first callback, and null where it does not
// start.
template <typename T>
Status StartFor(std::unique_ptr<T> worker, std::string_view what, T** handle) {
  *handle = worker.get();
  Status started;
  try {
    started = worker->Start(what);
  } catch (const std::bad_alloc&) {
    *handle = nullptr;
    throw;
  }
  if (started.ok()) {
    static_cast<void>(worker.release());
  } else {
    *handle = nullptr;
  }
  return started;
}

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_WORKER_H

// A thread of the library that calls the caller back, and its end.
#ifndef DAROKLEIM_CLIENT_WORKER_H
#define DAROKLEIM_CLIENT_WORKER_H

#include <memory>
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
    try {
      const base::SignalsBlocked blocked;
      thread_ = std::thread([this] { Run(); });
    } catch (const std::system_error& refused) {
      return FromHostErrno(refused.code().value(), what, "");
    }
    return {};
  }

  // Ends and frees the worker. No callback runs after it has returned; when it is called from within one, none after that.
  static void Stop(Worker* worker) {
    worker->stop_->Set();
    if (worker->thread_.get_id() == std::this_thread::get_id()) {
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

  // Nothing may leave it but a lack of memory, after which the thread ends.
  virtual void Work() = 0;

  bool stopping() const { return stop_->IsSet(); }
  adb::Limits limits() const {
    adb::Limits limits;
    limits.interrupt = stop_.get();
    return limits;
  }

 private:
  void Run() {
    try {
      Work();
    } catch (const std::bad_alloc&) {
    }
    if (frees_itself_) delete this;
  }

  std::unique_ptr<adb::CancelToken> stop_;
  std::thread thread_;
  bool frees_itself_ = false;  // written and read on the thread itself
};

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_WORKER_H

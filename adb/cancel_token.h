// An interrupt that any thread sets and that wakes waiting calls at once.
#ifndef DAROKLEIM_ADB_CANCEL_TOKEN_H
#define DAROKLEIM_ADB_CANCEL_TOKEN_H

#include <unistd.h>

#include <atomic>
#include <memory>

#include "adb/limits.h"
#include "base/unique_fd.h"

namespace darokleim::adb {

class CancelToken : public Interrupt {
 public:
  // kSystem when there are no descriptors left.
  static Result<std::unique_ptr<CancelToken>> Create();

  // From any thread and from a signal handler, any number of times. It stays set until Reset(). Both do nothing in a fork, which
  // shares the pipe with its parent.
  void Set();
  // Makes it usable again, while no call holds it.
  void Reset();

  bool IsSet() const override { return set_.load(std::memory_order_acquire); }
  int descriptor() const override { return read_end_.get(); }

 private:
  CancelToken(base::UniqueFd read_end, base::UniqueFd write_end)
      : read_end_(std::move(read_end)), write_end_(std::move(write_end)) {}

  bool IsOfThisProcess() const { return owner_ == getpid(); }

  const pid_t owner_ = getpid();
  std::atomic<bool> set_{false};
  base::UniqueFd read_end_;
  base::UniqueFd write_end_;
};

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_CANCEL_TOKEN_H

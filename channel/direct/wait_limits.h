// What ends the waits of a direct command early.
#ifndef DAROKLEIM_CHANNEL_DIRECT_WAIT_LIMITS_H
#define DAROKLEIM_CHANNEL_DIRECT_WAIT_LIMITS_H

#include <memory>

#include "adb/cancel_token.h"
#include "channel/process/cancel_flag.h"

namespace darokleim::channel::direct {

// The caller's flag. It cannot wake a wait, so it is checked again and again.
class FlagInterrupt : public adb::Interrupt {
 public:
  explicit FlagInterrupt(const CancelFlag& flag) : flag_(flag) {}

  bool IsSet() const override { return flag_.IsSet(); }
  std::chrono::milliseconds longest_wait() const override {
    return std::chrono::milliseconds(flag_.LongestWait());
  }

 private:
  const CancelFlag flag_;
};

// The caller's flag, or the end of a stream, which other threads ask for.
class StreamInterrupt : public adb::Interrupt {
 public:
  // Without descriptors to spare, or where there is a flag to check anyway, waits are not woken but short.
  explicit StreamInterrupt(const CancelFlag& flag) : flag_(flag) {
    if (flag_.CanBeSet()) return;
    if (auto token = adb::CancelToken::Create(); token.ok()) token_ = *std::move(token);
  }

  void Set() {
    set_.store(true, std::memory_order_release);
    if (token_ != nullptr) token_->Set();
  }

  bool IsSet() const override { return set_.load(std::memory_order_acquire) || flag_.IsSet(); }
  int descriptor() const override { return token_ == nullptr ? -1 : token_->descriptor(); }
  std::chrono::milliseconds longest_wait() const override { return std::chrono::milliseconds(8); }

 private:
  const CancelFlag flag_;
  std::unique_ptr<adb::CancelToken> token_;
  std::atomic<bool> set_ = false;
};

}  // namespace darokleim::channel::direct

#endif  // DAROKLEIM_CHANNEL_DIRECT_WAIT_LIMITS_H

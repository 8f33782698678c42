// What every function of the interface does around its work.
#ifndef DAROKLEIM_CLIENT_CALL_H
#define DAROKLEIM_CLIENT_CALL_H

#include <cstring>
#include <new>

#include "adb/cancel_token.h"
#include "adb/limits.h"
#include "adb/sync_messages.h"
#include "client/error.h"

struct dk_cancel {
  std::unique_ptr<darokleim::adb::CancelToken> token;
};

namespace darokleim::client {

using adb::Limits;

// Bytes of a file are read, sent and handed on in blocks of this size.
inline constexpr std::size_t kBlock = adb::kLongestSyncData;

// The caller's dk_call, read once: how long to wait, what ends the wait, where the error goes.
class Call {
 public:
  explicit Call(const dk_call* call);

  const Limits& limits() const { return limits_; }
  // The code of the outcome; an error is handed to the caller.
  dk_code Finish(Status status);

 private:
  Limits limits_;
  dk_error** error_ = nullptr;
};

// Runs `body`, which takes Limits and returns a Status. No exception leaves: the only one to come is a lack of memory.
template <typename Body>
dk_code Answer(const dk_call* options, Body body) noexcept {
  try {
    Call call(options);
    return call.Finish(body(call.limits()));
  } catch (const std::bad_alloc&) {
    return DK_OUT_OF_MEMORY;
  }
}

// Copies an input structure of the caller's, perhaps of an older version of the header, over the defaults.
template <typename Options>
Options ReadOptions(const Options* given, Options defaults) {
  if (given == nullptr) return defaults;
  const std::size_t size = given->size < sizeof defaults ? given->size : sizeof defaults;
  std::memcpy(&defaults, given, size);
  return defaults;
}

// A copy for the caller to give back with dk_bytes_free(). Throws when there is no memory.
dk_bytes NewBytes(std::string_view content);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_CALL_H

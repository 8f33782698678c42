#include "client/call.h"

#include <cstdlib>

namespace darokleim::client {

Call::Call(const dk_call* given) {
  const dk_call call = ReadOptions<dk_call>(given, DK_CALL_INIT);
  error_ = call.error;
  if (error_ != nullptr) *error_ = nullptr;
  if (call.cancel != nullptr) limits_.interrupt = call.cancel->token.get();
  if (call.timeout_ms <= 0) return;
  const auto now = adb::Clock::now();
  const auto most =
      std::chrono::duration_cast<std::chrono::milliseconds>(adb::Clock::time_point::max() - now);
  const std::chrono::milliseconds timeout(call.timeout_ms);
  if (timeout < most) limits_.deadline = now + timeout;
}

dk_code Call::Finish(Status status) {
  if (status.ok()) return DK_OK;
  const dk_code code = status.error().code;
  if (error_ != nullptr && code != DK_OUT_OF_MEMORY) *error_ = new dk_error{status.TakeError()};
  return code;
}

dk_bytes NewBytes(std::string_view content) {
  auto* const data = static_cast<char*>(std::malloc(content.size() + 1));
  if (data == nullptr) throw std::bad_alloc();
  content.copy(data, content.size());
  data[content.size()] = '\0';
  return {data, content.size()};
}

}  // namespace darokleim::client

using namespace darokleim;

dk_code dk_cancel_new(dk_cancel** cancel) {
  if (cancel == nullptr) return DK_INVALID_ARGUMENT;
  *cancel = nullptr;
  return client::Answer(nullptr, [&](const adb::Limits&) -> client::Status {
    auto token = adb::CancelToken::Create();
    if (!token.ok()) return client::FromAdb(token.error(), "make a cancel token", "");
    *cancel = new dk_cancel{std::move(*token)};
    return {};
  });
}

void dk_cancel_set(dk_cancel* cancel) {
  if (cancel != nullptr) cancel->token->Set();
}
bool dk_cancel_is_set(const dk_cancel* cancel) {
  return cancel != nullptr && cancel->token->IsSet();
}
void dk_cancel_reset(dk_cancel* cancel) {
  if (cancel != nullptr) cancel->token->Reset();
}
void dk_cancel_free(dk_cancel* cancel) {
  delete cancel;
}

void dk_bytes_free(dk_bytes* bytes) {
  if (bytes == nullptr) return;
  std::free(bytes->data);
  *bytes = {};
}

#include "channel/direct/call.h"

#include <string.h>

#include <algorithm>

namespace darokleim::channel::direct {

bool Call::Print(std::string_view text) const {
  while (!text.empty()) {
    const std::span<char> room = output->Room();
    if (room.empty()) return false;
    const size_t count = std::min(room.size(), text.size());
    memcpy(room.data(), text.data(), count);
    output->Commit(count);
    text.remove_prefix(count);
  }
  return true;
}

Ending Call::Finish(std::string_view text, int exit_status) const {
  if (!Print(text)) return {Ending::kOutputRefused};
  return {Ending::kExited, exit_status};
}

namespace {

bool IsRefusal(const adb::Error& error) {
  return error.code == adb::ErrorCode::kRefused;
}

Ending PrintRefusal(const Call& call, std::string_view prefix, const adb::Error& error) {
  return call.Finish(std::string(prefix).append(UpToZero(error.message)) + '\n', 1);
}

// Those that have nothing to do with the server.
Attempt EndOfItself(const adb::Error& error) {
  switch (error.code) {
    case adb::ErrorCode::kCancelled:
      return Ending{Ending::kCancelled};
    case adb::ErrorCode::kSystem:
      return Ending{Ending::kSystemRefused};
    default:
      return std::nullopt;
  }
}

}  // namespace

Attempt EndBefore(const Call& call, std::string_view prefix, const adb::Error& error) {
  return IsRefusal(error) ? PrintRefusal(call, prefix, error) : EndOfItself(error);
}

Attempt EndAfter(const Call& call, std::string_view prefix, const adb::Error& error) {
  if (error.code == adb::ErrorCode::kTooLong) return kGiveWay;
  return IsRefusal(error) ? PrintRefusal(call, prefix, error) : EndWithin(error);
}

Ending EndWithin(const adb::Error& error) {
  return EndOfItself(error).value_or(Ending{Ending::kBroken});
}

Ending PrintStream(const Call& call, adb::Connection* connection) {
  for (;;) {
    const std::span<char> room = call.output->Room();
    if (room.empty()) return {Ending::kOutputRefused};
    const adb::Result<size_t> count = connection->Read(room, call.limits);
    if (!count.ok()) return EndWithin(count.error());
    if (*count == 0) return {Ending::kExited, 0};
    call.output->Commit(*count);
  }
}

std::string_view UpToZero(std::string_view text) {
  return text.substr(0, text.find('\0'));
}

}  // namespace darokleim::channel::direct

#include "adb/message.h"

#include <array>
#include <optional>

namespace darokleim::adb {

namespace {

constexpr size_t kWord = 4;  // bytes of OKAY, FAIL and a length

constexpr std::string_view kDigits = "0123456789abcdef";

std::string Hexadecimal(size_t length) {
  std::string digits(kWord, '0');
  for (size_t i = kWord; i-- > 0; length /= 16) digits[i] = kDigits[length % 16];
  return digits;
}

std::optional<size_t> ParseHexadecimal(std::string_view digits) {
  size_t value = 0;
  for (const char digit : digits) {
    const size_t of_digit =
        kDigits.find(digit >= 'A' && digit <= 'F' ? static_cast<char>(digit - 'A' + 'a') : digit);
    if (of_digit == std::string_view::npos) return std::nullopt;
    value = value * 16 + of_digit;
  }
  return value;
}

std::string Naming(std::string_view part, std::string_view what) {
  return std::string(part) + " of the answer to " + std::string(what.substr(0, 64));
}

// Of a text; its digits stay in the buffer.
Result<size_t> AwaitLength(Connection* connection, std::string_view what, const Limits& limits) {
  if (Status status = connection->Buffer(kWord, Naming("the length", what), limits); !status.ok()) {
    return status.TakeError();
  }
  const std::optional<size_t> length = ParseHexadecimal(connection->buffered().substr(0, kWord));
  if (!length) return Unexpected(Naming("four hexadecimal digits", what), connection->buffered());
  return *length;
}

}  // namespace

Error Unexpected(std::string_view expected, std::string_view received) {
  constexpr size_t kShown = 8;
  std::string message = "expected " + std::string(expected) + ", received";
  for (const char byte : received.substr(0, kShown)) {
    const auto value = static_cast<unsigned char>(byte);
    message += {' ', kDigits[value / 16], kDigits[value % 16]};
  }
  if (received.size() > kShown) message += " ...";
  return {ErrorCode::kProtocolFault, std::move(message)};
}

Status SendRequest(Connection* connection, std::string_view request, const Limits& limits) {
  if (request.size() > kLongestRequest) {
    return Error{ErrorCode::kTooLong, "a request of " + std::to_string(request.size()) + " bytes"};
  }
  connection->Queue(Hexadecimal(request.size()));
  return connection->Send(request, limits);
}

Status ReadStatus(Connection* connection, std::string_view what, const Limits& limits) {
  if (Status status = connection->Buffer(kWord, Naming("OKAY or FAIL", what), limits); !status.ok())
    return status;
  const std::string_view word = connection->buffered().substr(0, kWord);
  if (word == "OKAY") {
    connection->Consume(kWord);
    return {};
  }
  if (word != "FAIL") return Unexpected(Naming("OKAY or FAIL", what), connection->buffered());
  connection->Consume(kWord);
  Result<std::string> message = ReadText(connection, what, limits);
  if (!message.ok()) return message.TakeError();
  return Error{ErrorCode::kRefused, *std::move(message)};
}

Result<std::string> ReadText(Connection* connection, std::string_view what, const Limits& limits) {
  const Result<size_t> length = AwaitLength(connection, what, limits);
  if (!length.ok()) return length.error();
  connection->Consume(kWord);
  std::string text(*length, '\0');
  if (Status status = connection->ReadExactly(text, Naming("the whole text", what), limits); !status.ok()) {
    return status.TakeError();
  }
  return text;
}

Result<std::string> TakeText(Connection* connection, std::string_view what, const Limits& limits) {
  const Result<size_t> length = AwaitLength(connection, what, limits);
  if (!length.ok()) return length.error();
  connection->GrowBuffer(kWord + *length);
  if (Status status = connection->Buffer(kWord + *length, Naming("the whole text", what), limits);
      !status.ok()) {
    return status.TakeError();
  }
  std::string text(connection->buffered().substr(kWord, *length));
  connection->Consume(kWord + *length);
  return text;
}

Result<std::string> ReadTextOrNothing(Connection* connection, std::string_view what, const Limits& limits) {
  if (connection->buffered().empty()) {
    Result<bool> more = connection->Fill(limits);
    if (!more.ok()) return more.TakeError();
    if (!*more) return std::string();
  }
  return ReadText(connection, what, limits);
}

Result<std::string> ReadToEnd(Connection* connection, size_t most, const Limits& limits) {
  std::string text;
  for (;;) {
    text.append(connection->buffered());
    connection->Consume(connection->buffered().size());
    if (text.size() > most) return Unexpected("at most " + std::to_string(most) + " bytes", text);
    Result<bool> more = connection->Fill(limits);
    if (!more.ok()) return more.TakeError();
    if (!*more) return text;
  }
}

}  // namespace darokleim::adb

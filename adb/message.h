// What every exchange with the adb server is made of: a request of at most 65,535 bytes after its length in four
// hexadecimal digits, the answer OKAY or FAIL, and texts with such a length before them.
#ifndef DAROKLEIM_ADB_MESSAGE_H
#define DAROKLEIM_ADB_MESSAGE_H

#include <string>
#include <string_view>

#include "adb/connection.h"

namespace darokleim::adb {

inline constexpr size_t kLongestRequest = 0xffff;

// Sends a request in one piece. kTooLong, without sending, beyond kLongestRequest.
Status SendRequest(Connection* connection, std::string_view request, const Limits& limits);

// OKAY, or FAIL and its message: kRefused with the message's bytes. `what` names the request in other errors.
Status ReadStatus(Connection* connection, std::string_view what, const Limits& limits);

// A text with its length before it.
Result<std::string> ReadText(Connection* connection, std::string_view what, const Limits& limits);

// The same, taken only when all of it has arrived: after kTimedOut and kCancelled it may be called again.
Result<std::string> TakeText(Connection* connection, std::string_view what, const Limits& limits);

// As ReadText, but nothing at all is an empty text: some answers end where others have a text.
Result<std::string> ReadTextOrNothing(Connection* connection, std::string_view what, const Limits& limits);

// Everything up to the end of the stream. kProtocolFault beyond `most` bytes.
Result<std::string> ReadToEnd(Connection* connection, size_t most, const Limits& limits);

// kProtocolFault: what was expected, and the first bytes of what came instead.
Error Unexpected(std::string_view expected, std::string_view received);

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_MESSAGE_H

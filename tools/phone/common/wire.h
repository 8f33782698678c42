#ifndef DAROKLEIM_TOOLS_PHONE_COMMON_WIRE_H
#define DAROKLEIM_TOOLS_PHONE_COMMON_WIRE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace darokleim::phone {

// The adb client's side of the smart-socket protocol: a request is four hexadecimal digits of length and that
// many bytes; an answer is OKAY, or FAIL and a text in the same form.
std::optional<std::string> ReadRequest(int fd);

// Each answer goes out as the adb server sends it, the word and then the rest: where small packets are held back, a
// client that waits for the whole answer also waits for its own system's delayed acknowledgement of the word.
bool SendOkay(int fd);
bool SendFail(int fd, std::string_view reason);
// A text after its length, as it follows OKAY. A text longer than four hexadecimal digits can express is cut.
std::string WithLength(std::string_view text);
bool SendText(int fd, std::string_view text);
bool SendOkayAndText(int fd, std::string_view text);

// When `text` begins with `prefix`: cuts it off and is true.
bool TakePrefix(std::string_view* text, std::string_view prefix);

// Every piece between separators, empty ones too.
std::vector<std::string> Split(std::string_view text, char separator);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_COMMON_WIRE_H

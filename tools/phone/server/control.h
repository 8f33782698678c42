#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_CONTROL_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_CONTROL_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/phone/server/phone_list.h"

namespace darokleim::phone {

// `darokleim-phone ctl` talks to the running server as an adb client does, with services of our own under this
// prefix; its words are separated by NUL bytes.
inline constexpr std::string_view kControlPrefix = "darokleim-phone:";

void AnswerControl(PhoneList* phones, std::string_view words, int client);

// The client's side. Prints the answer; the result is the exit status.
int RunControl(uint16_t port, const std::vector<std::string>& words);

// What the words may be, for the help text.
std::string ControlHelp();

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_CONTROL_H

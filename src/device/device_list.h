#ifndef DAROKLEIM_SRC_DEVICE_DEVICE_LIST_H
#define DAROKLEIM_SRC_DEVICE_DEVICE_LIST_H

// The lines of `adb devices`.

#include <optional>
#include <string>
#include <string_view>

// "unauthor" for "unauthorized", "offline" for "offline", "author" for every other text. Part of the interface of
// the library's archive; nothing here calls it.
std::string convert_connect_string(const std::string& state);

namespace darokleim::sdk {

// One attached device, as two pieces of the line.
struct DeviceLine {
  std::string_view serial;
  std::string_view state;
};

// Matches a whole line against
//     ^([a-zA-Z0-9]+)\s+(\b(device|offline|unauthorized)\b)$
// with a constant amount of stack, however long the line is. The heading, serials with any other character (network
// addresses, emulators), other states and lines with anything after the state, a carriage return included, do not
// match.
std::optional<DeviceLine> MatchDeviceLine(std::string_view line);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_DEVICE_DEVICE_LIST_H

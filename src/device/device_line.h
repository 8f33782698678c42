// The lines of `adb devices`.
#ifndef DAROKLEIM_SRC_DEVICE_DEVICE_LINE_H
#define DAROKLEIM_SRC_DEVICE_DEVICE_LINE_H

#include <optional>
#include <string_view>

namespace darokleim::sdk {

// One attached device, as two pieces of the line.
struct DeviceLine {
  std::string_view serial;
  std::string_view state;
};

// Matches a whole line against
//     ^([a-zA-Z0-9]+)\s+(\b(device|offline|unauthorized)\b)$
// without a line's length in stack. So the heading, serials with any other character (network addresses,
// emulators), other states and lines with anything behind the state, a carriage return included, are no
// match.
std::optional<DeviceLine> MatchDeviceLine(std::string_view line);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_DEVICE_DEVICE_LINE_H

#include "device/device_line.h"

#include "core/text.h"

namespace darokleim {
namespace {

constexpr bool IsAsciiLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

constexpr bool IsListedState(std::string_view word) {
  return word == "device" || word == "offline" || word == "unauthorized";
}

}  // namespace

std::optional<DeviceLine> MatchDeviceLine(std::string_view line) {
  std::size_t serial_end = 0;
  while (serial_end < line.size() && IsAsciiLetterOrDigit(line[serial_end])) ++serial_end;
  const std::size_t state_begin = line.find_first_not_of(kBlanks, serial_end);
  if (serial_end == 0 || state_begin == std::string_view::npos || state_begin == serial_end)
    return std::nullopt;
  const DeviceLine device{line.substr(0, serial_end), line.substr(state_begin)};
  if (!IsListedState(device.state)) return std::nullopt;
  return device;
}

}  // namespace darokleim

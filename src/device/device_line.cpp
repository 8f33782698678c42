#include "src/device/device_line.h"

#include "base/ascii.h"
#include "src/core/text.h"

namespace darokleim::sdk {
namespace {

constexpr bool IsListedState(std::string_view word) {
  return word == "device" || word == "offline" || word == "unauthorized";
}

}  // namespace

std::optional<DeviceLine> MatchDeviceLine(std::string_view line) {
  std::size_t serial_end = 0;
  while (serial_end < line.size() && base::IsAsciiLetterOrDigit(line[serial_end])) ++serial_end;
  const std::size_t state_begin = line.find_first_not_of(kBlanks, serial_end);
  if (serial_end == 0 || state_begin == std::string_view::npos || state_begin == serial_end)
    return std::nullopt;
  const DeviceLine device{line.substr(0, serial_end), line.substr(state_begin)};
  if (!IsListedState(device.state)) return std::nullopt;
  return device;
}

}  // namespace darokleim::sdk

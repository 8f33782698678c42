#include "platform/channel/device_quoting.h"

namespace darokleim::channel {

std::string QuoteForDevice(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted += '\'';
}

}  // namespace darokleim::channel

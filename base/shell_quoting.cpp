#include "base/shell_quoting.h"

namespace darokleim::base {

std::string QuoteForShell(std::string_view text) {
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

}  // namespace darokleim::base

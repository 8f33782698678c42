#include "tools/cli/argument_text.h"

#include <algorithm>

#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

bool IsPlainCharacter(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         std::string_view("/._-+,:@%=").find(c) != std::string_view::npos;
}

}  // namespace

std::string ForBarePlace(std::string_view text) {
  if (std::all_of(text.begin(), text.end(), IsPlainCharacter)) return std::string(text);
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

void CheckCanBeCarried(std::string_view path) {
  for (const std::string_view separator : {"\" \"/", "'\" \"'/"}) {
    if (path.find(separator) == std::string_view::npos) continue;
    throw ToolError("the library cannot carry this path to the device: " + std::string(path) +
                    "\nA folder in it has a name that ends in a quote, a blank and a quote. Rename it.");
  }
}

}  // namespace darokleim::cli

#include "tools/cli/device/argument_text.h"

#include <algorithm>

#include "base/ascii.h"
#include "base/shell_quoting.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

bool IsPlainCharacter(char c) {
  return base::IsAsciiLetterOrDigit(c) || std::string_view("/._-+,:@%=").find(c) != std::string_view::npos;
}

}  // namespace

std::string ForBarePlace(std::string_view text) {
  return std::all_of(text.begin(), text.end(), IsPlainCharacter) ? std::string(text)
                                                                 : base::QuoteForShell(text);
}

void CheckCanBeCarried(std::string_view path) {
  for (const std::string_view separator : {"\" \"/", "'\" \"'/"}) {
    if (path.find(separator) == std::string_view::npos) continue;
    throw ToolError("the library cannot carry this path to the device: " + std::string(path) +
                    "\nA folder in it has a name that ends in a quote, a space and a quote. Rename it.");
  }
}

void CheckLength(const std::string& command, std::size_t limit, const std::string& what) {
  if (command.size() <= limit) return;
  throw ToolError(what + " is too long: " + std::to_string(command.size() - limit) +
                  " bytes more than fit into the command.");
}

}  // namespace darokleim::cli

#include "tools/cli/commands/sdk/adb_killing.h"

#include <algorithm>
#include <string_view>

#include "base/ascii.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/own_process.h"

namespace darokleim::cli {
namespace {

bool IsPartOfWord(char c) {
  return base::IsAsciiLetterOrDigit(c) || c == '_';
}

// As `grep -w adb` finds it.
bool HoldsTheWordAdb(std::string_view text) {
  constexpr std::string_view kAdb = "adb";
  for (auto at = text.find(kAdb); at != std::string_view::npos; at = text.find(kAdb, at + 1)) {
    const bool begins = at == 0 || !IsPartOfWord(text[at - 1]);
    const auto end = at + kAdb.size();
    if (begins && (end == text.size() || !IsPartOfWord(text[end]))) return true;
  }
  return false;
}

}  // namespace

void CheckSurvivesKilling() {
  const auto words = OwnCommandLine();
  const auto found = std::find_if(words.begin(), words.end(), HoldsTheWordAdb);
  if (found != words.end()) {
    throw ToolError("this command would kill itself: its own command line holds the word adb, in \"" +
                    *found + "\". Let adb be found in PATH, and start the tool from another folder.");
  }
}

}  // namespace darokleim::cli

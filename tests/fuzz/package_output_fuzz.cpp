// The matchers of the package manager's output compared with the standard regular expressions that they replace.
#include <algorithm>
#include <optional>
#include <regex>

#include "src/apps/package_output.h"
#include "tests/fuzz/fuzz.h"

namespace {

void RequireSame(std::optional<std::string_view> found, bool matches, const std::string& expected) {
  darokleim::sdk::Require(found.has_value() == matches);
  if (found) darokleim::sdk::Require(*found == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  static const std::regex kPackageLine("^[^:]*:(\\S+)\\s*$");
  static const std::regex kVersion("versionName=[0-9\\.]+");
  static const std::regex kCurrentUser("Current user: (\\d+)");
  constexpr std::size_t kLongestForTheStandard = 2'000;  // it takes a stack frame for each character
  const std::string text = Text(data, std::min(size, kLongestForTheStandard));
  std::smatch groups;

  const bool is_package_line = std::regex_match(text, groups, kPackageLine);
  RequireSame(MatchPackageLine(text), is_package_line, groups[1].str());

  const bool holds_version = std::regex_search(text, groups, kVersion);
  RequireSame(FindVersion(text), holds_version,
              holds_version ? groups[0].str().substr(sizeof "versionName=" - 1) : "");

  const bool holds_user = std::regex_search(text, groups, kCurrentUser);
  RequireSame(FindCurrentUser(text), holds_user, groups[1].str());
  return 0;
}

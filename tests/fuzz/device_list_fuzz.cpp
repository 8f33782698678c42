// The lines of `adb devices`, compared with the standard regular expression, and the words for their states.
#include <regex>
#include <vector>

#include "src/core/string_helper.h"
#include "src/device/device_list.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  static const std::regex kPattern("^([a-zA-Z0-9]+)\\s+(\\b(device|offline|unauthorized)\\b)$");
  constexpr std::size_t kLongestForTheStandard = 2'000;  // it takes a stack frame for each character
  std::vector<std::string> lines;
  StringHelper::StringSplit(lines, Text(data, std::min(size, kLongestForTheStandard)), "\n");
  for (const std::string& line : lines) {
    std::smatch groups;
    const bool matches = std::regex_match(line, groups, kPattern);
    const auto found = MatchDeviceLine(line);
    Require(found.has_value() == matches);
    if (found) Require(found->serial == groups[1].str() && found->state == groups[2].str());

    const bool known = line == "unauthorized" || line == "offline";
    Require(convert_connect_string(line) == (known ? line.substr(0, sizeof "unauthor" - 1) : "author"));
  }
  return 0;
}

// The size in stat's output, compared with the standard regular expression over its lines.
#include <cstdlib>
#include <optional>
#include <regex>
#include <vector>

#include "src/core/string_helper.h"
#include "src/filesystem/stat_output.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  static const std::regex kPattern("^\\s+Size:\\s+(\\d+)(.*)$");
  constexpr std::size_t kLongestForTheStandard = 2'000;  // it takes a stack frame for each character
  const std::string output = Text(data, std::min(size, kLongestForTheStandard));
  std::vector<std::string> lines;
  StringHelper::StringSplit(lines, output, "\r\n");
  std::optional<unsigned long long> expected;
  for (const std::string& line : lines) {
    std::smatch groups;
    if (!std::regex_match(line, groups, kPattern)) continue;
    expected = static_cast<unsigned long long>(std::atoll(groups[1].str().c_str()));
    break;
  }
  Require(SizeInStatOutput(output) == expected);
  return 0;
}

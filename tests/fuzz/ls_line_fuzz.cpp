// A line of ls -l matches as the standard library's regular expressions say, whatever line matched before.
#include "src/filesystem/ls_line.h"
#include "tests/fuzz/fuzz.h"
#include "tests/fuzz/spliced_listing.h"
#include "tests/support/plain_listing.h"

namespace darokleim::sdk {
namespace {

constexpr std::string_view kGoodLines[] = {
    "-rw-rw---- 1 root sdcard_rw 1234 2020-01-02 03:04 my\\ file.txt",
    "-rw-r--r-- root     root          564 1969-12-31 16:00 default.prop "};

void CompareMatch(LsLineMatcher matcher, const std::string& line) {
  const auto match = matcher.Match(line);
  std::smatch plain;
  Require(match.has_value() == test::PlainMatchLsLine(line, plain));
  if (match)
    Require(match->size == plain[1].str() && match->time == plain[2].str() && match->name == plain[3].str());
}

}  // namespace
}  // namespace darokleim::sdk

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  const std::string input = Text(data, size);
  for (const std::string_view good : kGoodLines) {
    LsLineMatcher used;
    Require(used.Match(good).has_value());
    const std::string line = Spliced(good, input);
    CompareMatch({}, line);
    CompareMatch(used, line);
  }
  return 0;
}

// The address matcher compared with the standard regular expression that it replaces.
#include <regex>
#include <vector>

#include "src/core/string_helper.h"
#include "src/device/ip_address.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  static const std::regex kPattern("^\\d+\\.\\d+\\.\\d+\\.\\d+/\\d+$");
  constexpr std::size_t kLongestForTheStandard = 2'000;  // it takes a stack frame for each character
  const std::string text = Text(data, std::min(size, kLongestForTheStandard));
  Require(IsAddressWithPrefix(text) == std::regex_match(text, kPattern));

  std::vector<std::string> pieces;
  StringHelper::StringSplit(pieces, text, " ");
  const bool expected = pieces.size() >= 2 && std::regex_match(pieces[1], kPattern);
  const auto found = FindAddress(text);
  Require(found.has_value() == expected);
  if (found) Require(*found == pieces[1]);
  return 0;
}

// A line of a listing with a piece from the fuzzer in its middle, so that most inputs get past the first columns.
#ifndef DAROKLEIM_TESTS_FUZZ_SPLICED_LISTING_H
#define DAROKLEIM_TESTS_FUZZ_SPLICED_LISTING_H

#include <algorithm>
#include <string>
#include <string_view>

namespace darokleim::sdk {

// The first two bytes of the input are the lengths of the parts of the line before and after the rest of it.
inline std::string Spliced(std::string_view line, const std::string& input) {
  if (input.size() < 2) return std::string(line);
  const auto part = [&](char c) { return std::min<std::size_t>(static_cast<unsigned char>(c), line.size()); };
  return std::string(line.substr(0, part(input[0]))) + input.substr(2) +
         std::string(line.substr(line.size() - part(input[1])));
}

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_TESTS_FUZZ_SPLICED_LISTING_H

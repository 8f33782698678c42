#include "base/utf8.h"

#include <algorithm>

namespace darokleim::base {
namespace {

constexpr std::size_t kLongestCharacter = 4;

constexpr bool IsContinuation(char c) {
  return (Byte(c) & 0xc0) == 0x80;
}

std::size_t LengthByFirstByte(unsigned char first) {
  if (first < 0x80) return 1;
  if (first < 0xc2) return 0;
  if (first < 0xe0) return 2;
  if (first < 0xf0) return 3;
  return first < 0xf5 ? 4 : 0;
}

// Excludes longer forms than necessary, surrogates and what is beyond U+10FFFF.
bool IsAllowedStart(unsigned char first, unsigned char second) {
  switch (first) {
    case 0xe0:
      return second >= 0xa0;
    case 0xed:
      return second < 0xa0;
    case 0xf0:
      return second >= 0x90;
    case 0xf4:
      return second < 0x90;
    default:
      return true;
  }
}

}  // namespace

std::size_t LengthOfUtf8Character(std::string_view text) {
  if (text.empty()) return 0;
  const std::size_t length = LengthByFirstByte(Byte(text[0]));
  if (length < 2) return length;
  if (text.size() < length || !IsAllowedStart(Byte(text[0]), Byte(text[1]))) return 0;
  const std::string_view rest = text.substr(1, length - 1);
  return std::all_of(rest.begin(), rest.end(), IsContinuation) ? length : 0;
}

std::size_t CutPositionInUtf8(std::string_view text, std::size_t limit) {
  if (limit >= text.size()) return text.size();
  for (std::size_t back = 0; back < kLongestCharacter && back <= limit; ++back) {
    if (LengthOfUtf8Character(text.substr(limit - back)) > back) return limit - back;
  }
  return limit;  // not a valid character in any case
}

}  // namespace darokleim::base

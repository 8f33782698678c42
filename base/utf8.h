// Characters in UTF-8, in texts of which nothing is known.
#ifndef DAROKLEIM_BASE_UTF8_H
#define DAROKLEIM_BASE_UTF8_H

#include <cstddef>
#include <string_view>

namespace darokleim::base {

constexpr unsigned char Byte(char c) {
  return static_cast<unsigned char>(c);
}

// The number of bytes of the character that text begins with; 0 when text is empty or begins with bytes that are not
// valid UTF-8: incomplete, longer than necessary, a surrogate, or beyond U+10FFFF.
std::size_t LengthOfUtf8Character(std::string_view text);

// A position not after limit at which text can be cut without dividing a character.
std::size_t CutPositionInUtf8(std::string_view text, std::size_t limit);

}  // namespace darokleim::base

#endif  // DAROKLEIM_BASE_UTF8_H

#include "log/line_text.h"

#include <algorithm>
#include <cstdio>

#include "base/utf8.h"

namespace darokleim::log {
namespace {

// Formatted beyond the cut, so that it is known whether the cut divides a character.
constexpr std::size_t kLookAhead = 3;

bool IsPlain(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte >= 0x20 && byte < 0x7f) || c == '\t';
}

void AppendEscaped(std::string& line, char c) {
  constexpr char kHexDigits[] = "0123456789abcdef";
  if (c == '\n') {
    line += "\\n";
  } else if (c == '\r') {
    line += "\\r";
  } else {
    const auto byte = static_cast<unsigned char>(c);
    line += "\\x";
    line += kHexDigits[byte >> 4];
    line += kHexDigits[byte & 0xf];
  }
}

bool IsC1Character(std::string_view character) {
  return character.size() == 2 && character[0] == '\xc2' && static_cast<unsigned char>(character[1]) < 0xa0;
}

// A byte that is not part of a character.
bool IsC1Byte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x80 && byte < 0xa0;
}

// Appends the character that text begins with, which is not a plain one. Returns its length.
std::size_t AppendCharacter(std::string& line, std::string_view text) {
  const std::size_t length = base::LengthOfUtf8Character(text);
  const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
  if (length > 1 ? !IsC1Character(character) : length == 0 && !IsC1Byte(text[0])) {
    line += character;
  } else {
    for (const char c : character) AppendEscaped(line, c);
  }
  return character.size();
}

}  // namespace

std::string FormatText(const char* format, va_list arguments) {
  char short_text[512];
  va_list measured;
  va_copy(measured, arguments);
  // The analyzer mistakes a copy of a caller's list for one that was never started.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  const int measured_length = std::vsnprintf(short_text, sizeof short_text, format, measured);
  va_end(measured);
  if (measured_length < 0) return std::string(format).substr(0, kLongestText);
  const auto length = static_cast<std::size_t>(measured_length);
  if (length < sizeof short_text) return std::string(short_text, length);
  std::string text(std::min(length, kLongestText + kLookAhead), '\0');
  // The terminating zero replaces the string's own.
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  if (length <= kLongestText) return text;
  text.resize(base::CutPositionInUtf8(text, kLongestText));
  return text + " [cut: the first " + std::to_string(text.size()) + " of " + std::to_string(length) +
         " bytes]";
}

std::string OnOneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  while (!text.empty()) {
    const auto plain =
        static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsPlain) - text.begin());
    line.append(text, 0, plain);
    text.remove_prefix(plain);
    if (!text.empty()) text.remove_prefix(AppendCharacter(line, text));
  }
  return line;
}

}  // namespace darokleim::log

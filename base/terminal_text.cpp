#include "base/terminal_text.h"

#include <cstdio>

#include "base/utf8.h"

namespace darokleim::base {
namespace {

// Those that reorder the text around them: U+061C, U+200E, U+200F, U+2028 to U+202E, U+2066 to U+2069.
bool IsReordering(std::string_view character) {
  if (character == "\xd8\x9c") return true;
  if (character.size() != 3 || character[0] != '\xe2') return false;
  const unsigned char second = Byte(character[1]);
  const unsigned char third = Byte(character[2]);
  if (second == 0x80) return third == 0x8e || third == 0x8f || (third >= 0xa8 && third <= 0xae);
  return second == 0x81 && third >= 0xa6 && third <= 0xa9;
}

// C0, DEL, and C1, which some terminals obey in UTF-8 as well.
bool IsControl(std::string_view character) {
  const unsigned char first = Byte(character.front());
  return first < 0x20 || first == 0x7f || (first == 0xc2 && Byte(character[1]) < 0xa0) ||
         IsReordering(character);
}

void AppendEscaped(std::string_view bytes, std::string* text) {
  for (const char c : bytes) {
    if (c == '\n') {
      *text += "\\n";
    } else if (c == '\t') {
      *text += "\\t";
    } else if (c == '\r') {
      *text += "\\r";
    } else {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\x%02x", Byte(c));
      *text += escape;
    }
  }
}

}  // namespace

std::string EscapeControls(std::string_view text, std::string_view keep) {
  std::string escaped;
  while (!text.empty()) {
    const std::size_t length = LengthOfUtf8Character(text);
    const auto piece = text.substr(0, length == 0 ? 1 : length);
    if (length > 0 && (!IsControl(piece) || keep.find(piece) != std::string_view::npos)) {
      escaped += piece;
    } else {
      AppendEscaped(piece, &escaped);
    }
    text.remove_prefix(piece.size());
  }
  return escaped;
}

}  // namespace darokleim::base

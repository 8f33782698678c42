#ifndef DAROKLEIM_SRC_CORE_TEXT_H
#define DAROKLEIM_SRC_CORE_TEXT_H

// Non-copying string helpers.

#include <string_view>

namespace darokleim::sdk {

// The white space of isspace and of \s in a regular expression, in the "C" locale.
inline constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

// The length bytes at text; nothing for null. Throws std::length_error for a negative length.
std::string_view TextOf(const char* text, int length);

// For %.*s, which prints a text without a copy, up to its first zero byte. Texts of the channel fit an int.
inline int PrintedLength(std::string_view text) {
  return static_cast<int>(text.size());
}

inline bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// The number that a text begins with, read as by atoll: white space, a sign, decimal digits. 0 without digits, the
// nearest long long when out of range.
long long LeadingInteger(std::string_view text);

// Calls visit with each piece of text between separators, in order; empty pieces are dropped. visit returns
// whether to go on. An empty separator yields nothing.
template <typename Visit>
void ForEachPiece(std::string_view text, std::string_view separator, Visit visit) {
  if (separator.empty()) return;
  while (!text.empty()) {
    // Searching for a character is many times faster than searching for a text of one character.
    const std::size_t end = separator.size() == 1 ? text.find(separator.front()) : text.find(separator);
    const std::string_view piece = text.substr(0, end);
    if (!piece.empty() && !visit(piece)) return;
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + separator.size());
  }
}

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_TEXT_H

// Small questions about texts that nobody copies.
#ifndef DAROKLEIM_SRC_CORE_TEXT_H
#define DAROKLEIM_SRC_CORE_TEXT_H

#include <string_view>

namespace darokleim::sdk {

// What isspace and the \s of a regular expression take for blank, in the "C" locale.
inline constexpr std::string_view kBlanks = " \t\n\v\f\r";

inline bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// Calls visit with each piece of text between separators, in order; empty pieces are dropped. visit returns
// whether to go on. An empty separator yields nothing.
template <typename Visit>
void ForEachPiece(std::string_view text, std::string_view separator, Visit visit) {
  if (separator.empty()) return;
  while (!text.empty()) {
    // One character is found many times faster as such.
    const std::size_t end = separator.size() == 1 ? text.find(separator.front()) : text.find(separator);
    const std::string_view piece = text.substr(0, end);
    if (!piece.empty() && !visit(piece)) return;
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + separator.size());
  }
}

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_TEXT_H

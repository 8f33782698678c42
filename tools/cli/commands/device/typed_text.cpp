#include "tools/cli/commands/device/typed_text.h"

#include <algorithm>

#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

bool IsPrintableAscii(char c) {
  return c >= ' ' && c <= '~';
}

bool IsQuote(char c) {
  return c == '\'' || c == '"';
}

// Whether both must not go in one piece.
bool MustPart(char before, char after) {
  return before == '%' && after == 's';
}

// Whether the text would lose quotes of its own.
bool IsInQuotes(const std::string& text) {
  return text.size() > 1 && IsQuote(text.front()) && text.front() == text.back();
}

std::vector<std::string> Parted(const std::string& text) {
  std::vector<std::string> parts;
  for (const char c : text) {
    if (parts.empty() || MustPart(parts.back().back(), c)) parts.emplace_back();
    parts.back() += c;
  }
  if (IsInQuotes(parts.front())) {
    parts.insert(parts.begin(), parts.front().substr(0, 1));
    parts[1].erase(0, 1);
  }
  return parts;
}

// As `input` reads it.
std::string Written(const std::string& part) {
  std::string written;
  for (const char c : part) written += c == ' ' ? "%s" : std::string(1, c);
  return written;
}

}  // namespace

std::vector<std::string> PiecesToType(const std::string& text) {
  if (text.empty()) throw ToolError("cannot type an empty text.");
  if (!std::all_of(text.begin(), text.end(), IsPrintableAscii)) {
    throw ToolError("cannot type this text: phones can only be made to type printable ASCII characters.");
  }
  auto pieces = Parted(text);
  std::transform(pieces.begin(), pieces.end(), pieces.begin(), Written);
  return pieces;
}

}  // namespace darokleim::cli

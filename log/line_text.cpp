#include "log/line_text.h"

#include <algorithm>
#include <cstdio>

namespace darokleim::log {
namespace {

bool NeedsEscape(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte < 0x20 && c != '\t') || byte == 0x7f;
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

}  // namespace

std::string FormatText(const char* format, va_list arguments) {
  char short_text[512];
  va_list measured;
  va_copy(measured, arguments);
  // The analyzer mistakes a copy of a caller's list for one that was never started.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  const int length = std::vsnprintf(short_text, sizeof short_text, format, measured);
  va_end(measured);
  std::string text;
  if (length < 0) {
    text = format;
  } else if (static_cast<size_t>(length) < sizeof short_text) {
    text.assign(short_text, static_cast<size_t>(length));
  } else {
    text.resize(static_cast<size_t>(length));
    // The terminating zero replaces the string's own.
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  }
  return text;
}

std::string OnOneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  auto rest = text.begin();
  while (rest != text.end()) {
    const auto special = std::find_if(rest, text.end(), NeedsEscape);
    line.append(rest, special);
    rest = special;
    if (rest != text.end()) AppendEscaped(line, *rest++);
  }
  return line;
}

}  // namespace darokleim::log

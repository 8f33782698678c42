#include "src/core/argument_text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <limits>
#include <stdexcept>

namespace darokleim::sdk {
namespace {

DAROKLEIM_PRINTF_LIKE(2, 0)
std::string Format(std::size_t most, const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int measured = std::vsnprintf(nullptr, 0, format, arguments);
  if (measured < 0) {
    va_end(again);
    throw std::length_error("argument text");
  }
  // vsnprintf overwrites the string's own terminating zero with another one.
  std::string text(std::min(static_cast<std::size_t>(measured), most), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  return text;
}

}  // namespace

std::string Measured(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::string text = Format(std::numeric_limits<int>::max(), format, arguments);
  va_end(arguments);
  return text;
}

std::string Cut(std::size_t capacity, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::string text = Format(capacity - 1, format, arguments);
  va_end(arguments);
  return text;
}

}  // namespace darokleim::sdk

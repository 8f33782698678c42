#ifndef DAROKLEIM_TOOLS_PHONE_COMMON_NUMBERS_H
#define DAROKLEIM_TOOLS_PHONE_COMMON_NUMBERS_H

#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string_view>
#include <system_error>

namespace darokleim::phone {

// The number that the whole text is. None for any other text, spaces and a plus sign included, and for a number that
// does not fit.
template <typename Number>
std::optional<Number> ParseNumber(std::string_view text, int base = 10) {
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

// The numbers of a text such as "24x80,0x0", whose separators are "x,x".
template <typename Number, size_t kCount>
std::optional<std::array<Number, kCount>> ParseNumbers(std::string_view text,
                                                       const char (&separators)[kCount]) {
  std::array<Number, kCount> numbers;
  for (size_t i = 0; i < kCount; ++i) {
    const size_t length = i + 1 < kCount ? text.find(separators[i]) : text.size();
    if (length == std::string_view::npos) return std::nullopt;
    const auto number = ParseNumber<Number>(text.substr(0, length));
    if (!number) return std::nullopt;
    numbers[i] = *number;
    text.remove_prefix(i + 1 < kCount ? length + 1 : length);
  }
  return numbers;
}

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_COMMON_NUMBERS_H

#include "src/device/ip_output.h"

#include <algorithm>

#include "src/core/text.h"

namespace darokleim::sdk {

bool IsAddressWithPrefix(std::string_view text) {
  // What follows each of the five numbers.
  constexpr std::string_view kMarks = ".../";
  for (std::size_t number = 0; number <= kMarks.size(); ++number) {
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (digits == 0) return false;
    text.remove_prefix(digits);
    if (number == kMarks.size()) break;
    if (text.empty() || text[0] != kMarks[number]) return false;
    text.remove_prefix(1);
  }
  return text.empty();
}

std::optional<std::string_view> FindAddress(std::string_view output) {
  std::string_view second;
  int pieces = 0;
  ForEachPiece(output, " ", [&](std::string_view piece) {
    second = piece;
    return ++pieces < 2;
  });
  if (pieces < 2 || !IsAddressWithPrefix(second)) return std::nullopt;
  return second;
}

}  // namespace darokleim::sdk

#include "src/core/text.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace darokleim::sdk {

std::string_view TextOf(const char* text, int length) {
  if (!text) return {};
  if (length < 0) throw std::length_error("negative length");
  return {text, static_cast<std::size_t>(length)};
}

long long LeadingInteger(std::string_view text) {
  constexpr unsigned long long kLargest = std::numeric_limits<long long>::max();
  text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
  const bool negative = !text.empty() && text[0] == '-';
  if (negative || (!text.empty() && text[0] == '+')) text.remove_prefix(1);
  // The largest magnitude: one more below zero than above.
  const unsigned long long limit = kLargest + (negative ? 1 : 0);
  unsigned long long magnitude = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') break;
    const auto digit = static_cast<unsigned long long>(c - '0');
    if (magnitude > (limit - digit) / 10) {
      magnitude = limit;
      break;
    }
    magnitude = magnitude * 10 + digit;
  }
  return static_cast<long long>(negative ? 0 - magnitude : magnitude);
}

}  // namespace darokleim::sdk

#include "src/core/string_helper.h"

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string_view>
#if defined(__APPLE__)
#include <xlocale.h>
#else
#include <locale.h>
#endif

#include "src/core/text.h"

using namespace darokleim::sdk;

namespace {

constexpr unsigned long long kKibi = 1024ULL;

unsigned long long UnitOf(std::string_view size) {
  if (Contains(size, "G")) return kKibi * kKibi * kKibi;
  if (Contains(size, "M")) return kKibi * kKibi;
  return kKibi;
}

// The leading decimal fraction of a text that holds a point, whatever the decimal separator of the host's locale is;
// not "inf", "nan" or a hexadecimal number, which strtod reads too.
double LeadingFraction(const std::string& text) {
  static const locale_t kPointLocale = newlocale(LC_ALL_MASK, "C", nullptr);
  const std::size_t digits = text.find_first_not_of(kWhiteSpace);
  const std::size_t end = text.find_first_not_of("+-0123456789.eE", digits);
  const std::string number = text.substr(digits, end == std::string::npos ? end : end - digits);
  return strtod_l(number.c_str(), nullptr, kPointLocale);
}

unsigned long long Truncated(double value) {
  constexpr double kPastTheLast = 18446744073709551616.0;  // 2^64
  if (!(value > 0)) return 0;
  if (value >= kPastTheLast) return std::numeric_limits<unsigned long long>::max();
  return static_cast<unsigned long long>(value);
}

}  // namespace

long StringHelper::StringSplit(std::vector<std::string>& pieces, const std::string& text,
                               const std::string& separator) {
  const std::size_t before = pieces.size();
  ForEachPiece(text, separator, [&](std::string_view piece) {
    pieces.emplace_back(piece);
    return true;
  });
  return static_cast<long>(pieces.size() - before);
}

// Passed by value: callers rely on the types.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
long StringHelper::StringReplace(std::string& text, std::string from, std::string to) {
  if (text.empty() || from.empty()) return static_cast<long>(text.size());
  // Builds a second text, so that the time is proportional to the length whatever the number of replacements. carry
  // is a replacement that has not been searched yet: a match can begin in it and end in the rest.
  std::string result;
  std::string carry;
  std::string_view rest = text;
  while (true) {
    const std::size_t carried = carry.size();
    if (carried > 0) carry.append(rest.substr(0, from.size() - 1));
    const std::string_view window = carried > 0 ? std::string_view(carry) : rest;
    const std::size_t at = window.find(from);
    if (at == std::string_view::npos) {
      result.append(carry, 0, carried);
      carry.clear();
      if (carried > 0) continue;
      result.append(rest);
      break;
    }
    result.append(window.substr(0, at));
    const std::size_t end = at + from.size();
    const std::size_t end_in_carry = std::min(end, carried);
    rest.remove_prefix(end - end_in_carry);
    carry.resize(carried);
    carry.replace(0, end_in_carry, to);
  }
  text = std::move(result);
  return static_cast<long>(text.size());
}

long StringHelper::StringTrimLeft(std::string& text, char c) {
  text.erase(0, text.find_first_not_of(c));
  return static_cast<long>(text.size());
}

long StringHelper::StringTrimRight(std::string& text, char c) {
  text.erase(text.find_last_not_of(c) + 1);
  return static_cast<long>(text.size());
}

unsigned long long StringHelper::StorageToNumber(const std::string& size) {
  const unsigned long long unit = UnitOf(size);
  if (Contains(size, ".")) return Truncated(LeadingFraction(size) * static_cast<double>(unit));
  return static_cast<unsigned long long>(std::strtoll(size.c_str(), nullptr, 10)) * unit;
}

void replace(std::string& text, const std::string& from, const std::string& to) {
  if (from.empty()) return;
  std::string result;
  std::size_t begin = 0;
  for (std::size_t at; (at = text.find(from, begin)) != std::string::npos; begin = at + from.size()) {
    result.append(text, begin, at - begin).append(to);
  }
  if (begin == 0) return;
  text = result.append(text, begin);
}

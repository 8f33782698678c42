#include "filesystem/ls_line.h"

namespace darokleim {
namespace {

constexpr bool IsBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

constexpr bool IsPermission(char c) {
  return c == '-' || c == 'r' || c == 'w' || c == 'x';
}

// Reads a line from left to right. Blanks, digits and words end where a character of another kind stands, so
// the longest run is the only one that a pattern can take.
class Cursor {
 public:
  explicit Cursor(std::string_view line) : at_(line.data()), end_(line.data() + line.size()) {}

  bool Permissions() {
    constexpr std::ptrdiff_t kLength = 9;
    if (end_ - at_ < kLength) return false;
    bool all = true;
    for (int i = 0; i < kLength; ++i) all &= IsPermission(at_[i]);
    at_ += kLength;
    return all;
  }

  bool Char(char c) {
    return One([c](char other) { return other == c; });
  }
  bool Blank() { return One(IsBlank); }
  bool Blanks() { return !Run(IsBlank).empty(); }
  std::string_view Digits() { return Run(IsDigit); }
  std::string_view Word() {
    return Run([](char c) { return !IsBlank(c); });
  }

  // YYYY-MM-DD HH:MM, of hour and minute one or two digits; empty when it does not stand here.
  std::string_view Time() {
    const char* const begin = at_;
    const bool matched = Digits(4) && Char('-') && Digits(2) && Char('-') && Digits(2) && Blank() &&
                         OneOrTwoDigits() && Char(':') && OneOrTwoDigits();
    return matched ? std::string_view(begin, static_cast<std::size_t>(at_ - begin)) : std::string_view();
  }

  std::string_view Rest() const { return {at_, static_cast<std::size_t>(end_ - at_)}; }

 private:
  template <typename Kind>
  bool One(Kind is) {
    if (at_ == end_ || !is(*at_)) return false;
    ++at_;
    return true;
  }

  template <typename Kind>
  std::string_view Run(Kind is) {
    const char* const begin = at_;
    while (at_ != end_ && is(*at_)) ++at_;
    return {begin, static_cast<std::size_t>(at_ - begin)};
  }

  bool Digits(int count) {
    bool all = true;
    for (int i = 0; i < count; ++i) all = all && One(IsDigit);
    return all;
  }

  bool OneOrTwoDigits() {
    if (!One(IsDigit)) return false;
    One(IsDigit);
    return true;
  }

  const char* at_;
  const char* end_;
};

// (.*)\s*$: the name ends at the first line end, and nothing but blanks may follow.
std::optional<std::string_view> MatchName(std::string_view rest) {
  const std::size_t end = rest.find_first_of("\r\n");
  if (end == std::string_view::npos) return rest;
  for (const char c : rest.substr(end)) {
    if (!IsBlank(c)) return std::nullopt;
  }
  return rest.substr(0, end);
}

// From the size on. The cursor stands behind the blanks before it.
std::optional<LsLine> MatchSizeTimeName(Cursor cursor) {
  LsLine line;
  line.size = cursor.Digits();
  if (line.size.empty() || !cursor.Blank()) return std::nullopt;
  line.time = cursor.Time();
  if (line.time.empty() || !cursor.Blanks()) return std::nullopt;
  const auto name = MatchName(cursor.Rest());
  if (!name) return std::nullopt;
  line.name = *name;
  return line;
}

// From the owner on.
std::optional<LsLine> MatchFromOwner(Cursor cursor) {
  for (int column = 0; column < 2; ++column) {
    if (cursor.Word().empty() || !cursor.Blanks()) return std::nullopt;
  }
  return MatchSizeTimeName(cursor);
}

}  // namespace

std::optional<LsLine> MatchLsLine(std::string_view line) {
  Cursor cursor(line);
  if (!cursor.Char('-') || !cursor.Permissions() || !cursor.Blanks()) return std::nullopt;
  Cursor owner = cursor;
  if (!owner.Digits().empty() && owner.Blanks()) {
    if (const auto match = MatchFromOwner(owner)) return match;
  }
  return MatchFromOwner(cursor);
}

}  // namespace darokleim

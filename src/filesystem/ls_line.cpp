#include "src/filesystem/ls_line.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

namespace darokleim::sdk {
namespace {

constexpr bool IsSpace(char c) {
  // The most frequent cases first.
  return static_cast<unsigned char>(c) <= ' ' && (c == ' ' || (c >= '\t' && c <= '\r'));
}

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

constexpr std::array<bool, 256> kPermissions = [] {
  std::array<bool, 256> permissions{};
  for (const char c : {'-', 'r', 'w', 'x'}) permissions[static_cast<unsigned char>(c)] = true;
  return permissions;
}();

// Eight bytes at a time. In a form, '0' matches any digit, every other byte matches itself.
using Eight = std::uint64_t;
constexpr std::size_t kEight = sizeof(Eight);
constexpr Eight kHighBits = 0x8080808080808080U;

Eight Load(const char* text) {
  Eight eight;
  std::memcpy(&eight, text, kEight);
  return eight;
}

// Whether eight bytes match the form. The difference to the form is at most 9 for a digit and 0 elsewhere: a larger
// difference sets a byte's high bit.
bool HasForm(const char* text, const char* form) {
  char room[kEight];
  for (std::size_t i = 0; i < kEight; ++i) room[i] = form[i] == '0' ? 0x7F - 9 : 0x7F;
  const Eight difference = Load(text) ^ Load(form);
  return ((difference | (difference + Load(room))) & kHighBits) == 0;
}

// Reads a line from left to right. A run of white space, digits or other characters ends at the first character of
// another kind, so a pattern without backtracking gives the same matches as the regular expression.
class Cursor {
 public:
  explicit Cursor(std::string_view line) : at_(line.data()), end_(line.data() + line.size()) {}

  bool Permissions() {
    constexpr std::ptrdiff_t kLength = 9;
    if (end_ - at_ < kLength) return false;
    bool all = true;
    for (int i = 0; i < kLength; ++i) all &= kPermissions[static_cast<unsigned char>(at_[i])];
    at_ += kLength;
    return all;
  }

  bool Char(char c) {
    return One([c](char other) { return other == c; });
  }
  bool Space() { return One(IsSpace); }
  bool Spaces() { return !Run(IsSpace).empty(); }
  std::string_view Digits() { return Run(IsDigit); }
  std::string_view Word() {
    return Run([](char c) { return !IsSpace(c); });
  }

  // YYYY-MM-DD HH:MM, hour and minute of one or two digits; empty when the rest does not begin with it.
  std::string_view Time() {
    const char* const begin = at_;
    // The form that every phone prints. White space must follow, so a third digit of the minute cannot.
    if (end_ - at_ >= 16 && HasForm(at_, "0000-00-") && HasForm(at_ + kEight, "00 00:00")) {
      at_ += 2 * kEight;
      return {begin, 2 * kEight};
    }
    const bool matched = Digits(4) && Char('-') && Digits(2) && Char('-') && Digits(2) && Space() &&
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

// (.*)\s*$: the name ends at the first line break, and only white space may follow.
bool ReadName(std::string_view rest, LsLine& line) {
  // Two searches for one character are many times faster than one search for either.
  const std::size_t end = std::min(rest.find('\r'), rest.find('\n'));
  line.name = rest.substr(0, end);
  if (end == std::string_view::npos) return true;
  return std::all_of(rest.begin() + static_cast<std::ptrdiff_t>(end), rest.end(), IsSpace);
}

// From the size on; the cursor is after the white space before it.
bool ReadFromSize(Cursor cursor, LsLine& line) {
  line.size = cursor.Digits();
  if (line.size.empty() || !cursor.Space()) return false;
  line.time = cursor.Time();
  return !line.time.empty() && cursor.Spaces() && ReadName(cursor.Rest(), line);
}

// From the owner on. Sets after_group to the end of the first white-space character after the group.
bool ReadFromOwner(Cursor cursor, LsLine& line, const char*& after_group) {
  if (cursor.Word().empty() || !cursor.Spaces() || cursor.Word().empty()) return false;
  after_group = cursor.Rest().data() + 1;
  return cursor.Spaces() && ReadFromSize(cursor, line);
}

}  // namespace

std::optional<LsLine> LsLineMatcher::Match(std::string_view text) {
  std::optional<LsLine> line(std::in_place);
  // No line matches both with and without a link count: a match with the columns of the line before is the only one.
  if (!usual_.empty() && text.substr(0, usual_.size()) == usual_) {
    Cursor cursor(text.substr(usual_.size()));
    cursor.Spaces();
    if (ReadFromSize(cursor, *line)) return line;
  }
  Cursor cursor(text);
  if (!cursor.Char('-') || !cursor.Permissions() || !cursor.Spaces()) return std::nullopt;
  Cursor after_links = cursor;
  const char* after_group = nullptr;
  const bool with_links = !after_links.Digits().empty() && after_links.Spaces();
  if ((with_links && ReadFromOwner(after_links, *line, after_group)) ||
      ReadFromOwner(cursor, *line, after_group)) {
    usual_ = text.substr(0, static_cast<std::size_t>(after_group - text.data()));
    return line;
  }
  return std::nullopt;
}

}  // namespace darokleim::sdk

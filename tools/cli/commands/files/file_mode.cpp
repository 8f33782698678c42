#include "tools/cli/commands/files/file_mode.h"

#include <optional>
#include <string_view>

#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

constexpr std::uint32_t kAllBits = 07777;

// "go+rX" takes the clause off the text. Nothing where it is not one.
std::optional<std::uint32_t> ApplyClause(std::string_view clause, std::uint32_t mode, bool is_folder) {
  std::uint32_t who = 0;  // a set of 1: others, 010: group, 0100: user
  std::size_t i = 0;
  for (; i < clause.size() && std::string_view("ugoa").find(clause[i]) != std::string_view::npos; ++i) {
    who |= clause[i] == 'u' ? 0100u : clause[i] == 'g' ? 010u : clause[i] == 'o' ? 01u : 0111u;
  }
  if (who == 0) who = 0111;
  if (i == clause.size() || std::string_view("+-=").find(clause[i]) == std::string_view::npos)
    return std::nullopt;
  const char change = clause[i++];
  std::uint32_t bits = 0;
  for (; i < clause.size(); ++i) {
    switch (clause[i]) {
      case 'r':
        bits |= who * 4;
        break;
      case 'w':
        bits |= who * 2;
        break;
      case 'x':
        bits |= who;
        break;
      case 'X':
        if (is_folder || (mode & 0111) != 0) bits |= who;
        break;
      case 's':
        bits |= ((who & 0100) != 0 ? 04000u : 0u) | ((who & 010) != 0 ? 02000u : 0u);
        break;
      case 't':
        bits |= 01000;
        break;
      default:
        return std::nullopt;
    }
  }
  if (change == '+') return mode | bits;
  if (change == '-') return mode & ~bits;
  return (mode & ~(who * 7)) | bits;
}

std::optional<std::uint32_t> Apply(std::string_view text, std::uint32_t mode, bool is_folder) {
  for (;;) {
    const auto comma = text.find(',');
    const auto changed = ApplyClause(text.substr(0, comma), mode, is_folder);
    if (!changed || comma == std::string_view::npos) return changed;
    mode = *changed;
    text.remove_prefix(comma + 1);
  }
}

}  // namespace

FileMode FileMode::Parse(const std::string& word) {
  FileMode mode{word};
  constexpr std::size_t kMostDigits = 4;
  const bool is_octal =
      !word.empty() && word.size() <= kMostDigits && word.find_first_not_of("01234567") == std::string::npos;
  if (!is_octal && (word.empty() || !Apply(word, 0, false))) {
    throw UsageError("\"" + word + "\" is not a valid mode, for example 644, a+x or u=rw,go=r.");
  }
  return mode;
}

std::uint32_t FileMode::AppliedTo(std::uint32_t before, bool is_folder) const {
  constexpr int kOctal = 8;
  if (IsAbsolute()) return static_cast<std::uint32_t>(std::stoul(text, nullptr, kOctal));
  return Apply(text, before & kAllBits, is_folder).value_or(before & kAllBits);
}

}  // namespace darokleim::cli

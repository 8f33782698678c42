#include "src/apps/package_output.h"

#include <algorithm>

#include "src/core/text.h"

namespace darokleim::sdk {
namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kDigitsAndDots = "0123456789.";

// The longest run of the characters, at least one, directly after the first mark that such a run follows.
std::optional<std::string_view> FindRunAfter(std::string_view text, std::string_view mark,
                                             std::string_view characters) {
  while (true) {
    const std::size_t at = text.find(mark);
    if (at == std::string_view::npos) return std::nullopt;
    text.remove_prefix(at + mark.size());
    const std::size_t length = std::min(text.find_first_not_of(characters), text.size());
    if (length > 0) return text.substr(0, length);
  }
}

}  // namespace

std::optional<std::string_view> MatchPackageLine(std::string_view line) {
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  line.remove_prefix(colon + 1);
  const std::size_t length = std::min(line.find_first_of(kWhiteSpace), line.size());
  const bool ends_after = line.find_first_not_of(kWhiteSpace, length) == std::string_view::npos;
  if (length == 0 || !ends_after) return std::nullopt;
  return line.substr(0, length);
}

std::optional<std::string_view> FindVersion(std::string_view line) {
  return FindRunAfter(line, "versionName=", kDigitsAndDots);
}

std::optional<std::string_view> FindCurrentUser(std::string_view dump) {
  return FindRunAfter(dump, "Current user: ", kDigits);
}

}  // namespace darokleim::sdk

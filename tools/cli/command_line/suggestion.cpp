#include "tools/cli/command_line/suggestion.h"

#include <algorithm>
#include <utility>

namespace darokleim::cli {
namespace {

// Letters to insert, delete, replace or exchange with the next, to make one word of the other.
std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> before_last(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0u : 1u)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        row[j] = std::min(row[j], before_last[j - 2] + 1);
      }
    }
    before_last = std::exchange(last, row);
  }
  return last[b.size()];
}

constexpr std::size_t kLongestWord = 64;

}  // namespace

std::string NearestWord(std::string_view word, const std::vector<std::string>& known) {
  if (word.empty() || word.size() > kLongestWord) return "";
  std::string nearest;
  std::size_t least = std::max<std::size_t>(1, word.size() / 3) + 1;
  for (const std::string& candidate : known) {
    const bool begins_so = word.size() > 1 && candidate.compare(0, word.size(), word) == 0;
    const std::size_t distance = begins_so ? 1 : Distance(word, candidate);
    if (distance >= least) continue;
    least = distance;
    nearest = candidate;
  }
  return nearest;
}

std::string Suggestion(std::string_view word, const std::vector<std::string>& known) {
  const std::string nearest = NearestWord(word, known);
  return nearest.empty() ? "" : " Did you mean " + nearest + "?";
}

}  // namespace darokleim::cli

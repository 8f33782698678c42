#include "channel/output/failure_lines.h"

#include <algorithm>
#include <array>

namespace darokleim::channel {
namespace {

constexpr std::array<std::string_view, 5> kFailures = {"error: ", "adb: ", "* failed", "* cannot",
                                                       "cannot connect"};
constexpr size_t kLongestFailure = 14;

}  // namespace

bool IsFailureLine(std::string_view line) {
  return std::any_of(kFailures.begin(), kFailures.end(),
                     [&](std::string_view begin) { return line.substr(0, begin.size()) == begin; });
}

void FailureLineScanner::Scan(std::string_view piece) {
  while (!found_ && !piece.empty()) {
    const size_t line_end = piece.find('\n');
    const size_t missing = kLongestFailure - std::min(line_begin_.size(), kLongestFailure);
    line_begin_.append(piece.substr(0, std::min(line_end, missing)));
    if (line_end == std::string_view::npos) return;
    found_ = IsFailureLine(line_begin_);
    line_begin_.clear();
    piece.remove_prefix(line_end + 1);
  }
}

}  // namespace darokleim::channel

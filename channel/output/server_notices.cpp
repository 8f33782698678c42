#include "channel/output/server_notices.h"

#include <algorithm>

#include "channel/output/failure_lines.h"

namespace darokleim::channel {
namespace {

constexpr std::string_view kNotices[] = {"* daemon ", "adb server "};

// Worded like a notice, but adb gives up after it.
constexpr std::string_view kServerFailure = "* daemon still not running";

bool BeginsWith(std::string_view text, std::string_view begin) {
  return text.substr(0, begin.size()) == begin;
}

bool IsNotice(std::string_view line) {
  if (IsFailureLine(line) || BeginsWith(line, kServerFailure)) return false;
  return std::any_of(std::begin(kNotices), std::end(kNotices),
                     [&](std::string_view notice) { return BeginsWith(line, notice); });
}

size_t LengthOfCompleteNotices(std::string_view text) {
  size_t length = 0;
  for (;;) {
    const std::string_view rest = text.substr(length);
    const size_t line_end = rest.find('\n');
    if (line_end == std::string_view::npos || !IsNotice(rest.substr(0, line_end))) return length;
    length += line_end + 1;
  }
}

}  // namespace

size_t LengthOfLeadingNotices(std::string_view text) {
  const size_t length = LengthOfCompleteNotices(text);
  const std::string_view rest = text.substr(length);
  return rest.find('\n') == std::string_view::npos && IsNotice(rest) ? text.size() : length;
}

bool MayContinueNotices(std::string_view text) {
  const std::string_view line = text.substr(LengthOfCompleteNotices(text));
  if (line.find('\n') != std::string_view::npos) return false;
  return std::any_of(std::begin(kNotices), std::end(kNotices), [&](std::string_view notice) {
    return BeginsWith(line.size() < notice.size() ? notice : line,
                      line.size() < notice.size() ? line : notice);
  });
}

}  // namespace darokleim::channel

#include "channel/output/adb_messages.h"

#include <algorithm>
#include <array>

namespace darokleim::channel {
namespace {

constexpr std::string_view kNotices[] = {"* daemon ", "adb server "};

// Worded like a notice, but adb gives up after it.
constexpr std::string_view kServerFailure = "* daemon still not running";

constexpr std::array<std::string_view, 5> kFailures = {"error: ", "adb: ", "* failed", "* cannot",
                                                       "cannot connect"};
constexpr size_t kLongestFailure = 14;

// The messages of a phone's package manager and shell that have a result code: a text with one of them states the failure
// itself. and_part: what must be in the text, too.
struct StatedFailure {
  std::string_view message, and_part;
};
constexpr StatedFailure kStatedFailures[] = {
    {"Failure", ""},
    {"No such file or directory", ""},
    {"/system/bin/sh", "not found"},
    {"device", "not found"},
    {"no closing quote", ""},
    {"not enough space", ""},
    {"No space left on device", ""},
    {"Shell does not have permission to access user", ""},
};

bool BeginsWith(std::string_view text, std::string_view begin) {
  return text.substr(0, begin.size()) == begin;
}

// What follows the line in text does not matter.
bool IsNotice(std::string_view text) {
  if (IsFailureLine(text) || BeginsWith(text, kServerFailure)) return false;
  return std::any_of(std::begin(kNotices), std::end(kNotices),
                     [&](std::string_view notice) { return BeginsWith(text, notice); });
}

// Looks for line breaks in notices alone: what follows them may be 1 GiB without one.
size_t LengthOfCompleteNotices(std::string_view text) {
  size_t length = 0;
  while (IsNotice(text.substr(length))) {
    const size_t line_break = text.find('\n', length);
    if (line_break == std::string_view::npos) break;
    length = line_break + 1;
  }
  return length;
}

bool StatesFailure(std::string_view text) {
  const auto is_in_text = [&](std::string_view part) { return text.find(part) != std::string_view::npos; };
  return std::any_of(std::begin(kStatedFailures), std::end(kStatedFailures),
                     [&](const StatedFailure& failure) {
                       return is_in_text(failure.message) && is_in_text(failure.and_part);
                     });
}

bool HasFailureLine(std::string_view text) {
  FailureLineScanner scanner;
  scanner.Scan(text);
  return scanner.Found();
}

// The functions are called only when their result matters.
template <typename HasFailureLine, typename StatesFailure>
int Decide(const Command& command, const ExitOutcome& exit, HasFailureLine has_failure_line,
           StatesFailure states_failure) {
  switch (exit.kind) {
    case ExitOutcome::kSignalled:
      return kSignalBase + exit.number;
    case ExitOutcome::kUnknown:
      return has_failure_line() ? kExitStatusBase + 1 : int{kDelivered};
    case ExitOutcome::kExited:
      break;
  }
  if (exit.number == 0) return kDelivered;
  const Answer answer = command.answer();
  const bool text_decides = answer == Answer::kText || (answer == Answer::kStatedFailure && states_failure());
  if (text_decides && !has_failure_line()) return kDelivered;
  return kExitStatusBase + exit.number;
}

}  // namespace

size_t LengthOfLeadingNotices(std::string_view text) {
  const size_t length = LengthOfCompleteNotices(text);
  return IsNotice(text.substr(length)) ? text.size() : length;
}

bool MayContinueNotices(std::string_view text) {
  const std::string_view line = text.substr(LengthOfCompleteNotices(text));
  if (line.find('\n') != std::string_view::npos) return false;
  return std::any_of(std::begin(kNotices), std::end(kNotices), [&](std::string_view notice) {
    return BeginsWith(line.size() < notice.size() ? notice : line,
                      line.size() < notice.size() ? line : notice);
  });
}

bool IsFailureLine(std::string_view line) {
  return std::any_of(kFailures.begin(), kFailures.end(),
                     [&](std::string_view begin) { return BeginsWith(line, begin); });
}

void FailureLineScanner::Scan(std::string_view piece) {
  while (!found_ && !piece.empty()) {
    const size_t line_break = piece.find('\n');
    const size_t missing = kLongestFailure - std::min(line_begin_.size(), kLongestFailure);
    line_begin_.append(piece.substr(0, std::min(line_break, missing)));
    if (line_break == std::string_view::npos) return;
    found_ = IsFailureLine(line_begin_);
    line_begin_.clear();
    piece.remove_prefix(line_break + 1);
  }
}

int StatusOf(const Command& command, const ExitOutcome& exit, std::string_view output) {
  return Decide(
      command, exit, [&] { return HasFailureLine(output); }, [&] { return StatesFailure(output); });
}

int StatusOf(const Command& command, const ExitOutcome& exit, const FailureLineScanner& output) {
  return Decide(
      command, exit, [&] { return output.Found(); }, [] { return false; });
}

}  // namespace darokleim::channel

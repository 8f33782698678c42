#include "client/exit_mark.h"

#include <unistd.h>

#include <atomic>
#include <charconv>
#include <chrono>

#include "base/shell_quoting.h"

namespace darokleim::client {
namespace {

// The status, of three digits at most, and the line break of echo.
constexpr std::size_t kLongestEnd = 3 + 1;

}  // namespace

ExitMark::ExitMark() {
  static std::atomic<unsigned> count{0};
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  text_ = "\x1e" + std::to_string(getpid()) + "." + std::to_string(now) + "." + std::to_string(count++) + "=";
}

std::string ExitMark::Wrap(std::string_view script) const {
  return "sh -c " + base::QuoteForShell(script) + "; echo " + base::QuoteForShell(text_) + "$?";
}

void ExitMarkReader::Append(std::string_view data) {
  if (!through_terminal_) {
    held_.append(data);
    return;
  }
  for (const char c : data) {
    if (carriage_return_ && c != '\n' && c != '\r') held_ += '\r';
    carriage_return_ = c == '\r';
    if (!carriage_return_) held_ += c;
  }
}

std::string ExitMarkReader::Pass(std::string_view data) {
  Append(data);
  const std::size_t kept = mark_.size() + kLongestEnd;
  if (held_.size() <= kept) return {};
  std::string passed = held_.substr(0, held_.size() - kept);
  held_.erase(0, passed.size());
  return passed;
}

std::optional<int> ExitMarkReader::Finish() {
  const std::size_t at = held_.rfind(mark_);
  if (at == std::string::npos || held_.empty() || held_.back() != '\n') return std::nullopt;
  const char* const begin = held_.data() + at + mark_.size();
  const char* const end = held_.data() + held_.size() - 1;
  int status = 0;
  const auto [parsed, error] = std::from_chars(begin, end, status);
  if (error != std::errc() || parsed != end) return std::nullopt;
  held_.erase(at);
  return status;
}

}  // namespace darokleim::client

#include "log/log_file.h"

// Our levels in place of spdlog's: progress is spdlog's info, an echoed command its warning.
#define SPDLOG_LEVEL_NAMES \
  { "trace", "debug", "info", "command", "error", "critical", "off" }
#include <spdlog/details/log_msg.h>
#include <spdlog/pattern_formatter.h>

#include <utility>

namespace darokleim::log {
namespace {

// adb_sdk.log and the older adb_sdk.1.log to adb_sdk.4.log: at most 50 MiB, unless a single line is longer.
constexpr RotatingFile::Limits kLimits = {.bytes = std::size_t{10} * 1024 * 1024, .old_parts = 4};

constexpr std::chrono::seconds kReopenInterval{1};
constexpr char kLinePattern[] = "%Y-%m-%d %H:%M:%S.%e %z [%l] [%n] [%t] %v";

spdlog::level::level_enum SpdlogLevel(LogLevel level) {
  switch (level) {
    case LogLevel::kTrace:
      return spdlog::level::trace;
    case LogLevel::kProgress:
      return spdlog::level::info;
    case LogLevel::kCommand:
      return spdlog::level::warn;
    case LogLevel::kError:
      break;
  }
  return spdlog::level::err;
}

}  // namespace

std::unique_ptr<LogFile> LogFile::Open(const std::string& absolute_path) {
  std::unique_ptr<LogFile> file(new LogFile(absolute_path));
  if (!file->OpenFile()) return nullptr;
  return file;
}

LogFile::LogFile(std::string path)
    : path_(std::move(path)), formatter_(std::make_unique<spdlog::pattern_formatter>(kLinePattern)) {}

LogFile::~LogFile() = default;

void LogFile::Write(std::string_view module, LogLevel level, std::string_view line) {
  if (file_ == nullptr && !Recover(module)) {
    ++lines_lost_;
    return;
  }
  if (!TryWrite(module, level, line)) ++lines_lost_;
}

bool LogFile::OpenFile() {
  file_ = RotatingFile::Open(path_, kLimits);
  return file_ != nullptr;
}

std::string LogFile::FormatLine(std::string_view module, LogLevel level, std::string_view text) {
  const spdlog::string_view_t name(module.data(), module.size());
  const spdlog::string_view_t body(text.data(), text.size());
  spdlog::memory_buf_t line;
  formatter_->format(spdlog::details::log_msg(name, SpdlogLevel(level), body), line);
  return std::string(line.data(), line.size());
}

bool LogFile::TryWrite(std::string_view module, LogLevel level, std::string_view line) {
  if (file_->Append(FormatLine(module, level, line))) return true;
  file_.reset();
  next_attempt_ = std::chrono::steady_clock::now() + kReopenInterval;
  return false;
}

bool LogFile::Recover(std::string_view module) {
  const auto now = std::chrono::steady_clock::now();
  if (now < next_attempt_) return false;
  next_attempt_ = now + kReopenInterval;
  if (!OpenFile()) return false;
  const auto notice = "lines lost while the log could not be written: " + std::to_string(lines_lost_);
  if (!TryWrite(module, LogLevel::kError, notice)) return false;
  lines_lost_ = 0;
  return true;
}

}  // namespace darokleim::log

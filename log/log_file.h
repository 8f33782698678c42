// One rotating log file.
#ifndef DAROKLEIM_LOG_LOG_FILE_H
#define DAROKLEIM_LOG_LOG_FILE_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "log/rotating_file.h"

namespace spdlog {
class formatter;
}

namespace darokleim::log {

// The levels of LogEx, lowest first.
enum class LogLevel : int { kTrace = 0, kProgress = 1, kCommand = 2, kError = 3 };

// Hands each line to the system before Write returns, so that a crash of the host loses none. Not safe for concurrent
// use: the caller serialises. While the file cannot be written (a full disk, a removed directory), lines are dropped and
// counted, and the file is reopened at most once a second.
class LogFile {
 public:
  // Null when the file cannot be opened.
  static std::unique_ptr<LogFile> Open(const std::string& absolute_path);

  ~LogFile();
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;

  void Write(std::string_view module, LogLevel level, std::string_view line);

 private:
  explicit LogFile(std::string path);

  bool OpenFile();
  std::string FormatLine(std::string_view module, LogLevel level, std::string_view text);
  bool TryWrite(std::string_view module, LogLevel level, std::string_view line);
  bool Recover(std::string_view module);

  std::string path_;
  const std::unique_ptr<spdlog::formatter> formatter_;
  std::unique_ptr<RotatingFile> file_;  // null while the file cannot be written
  std::chrono::steady_clock::time_point next_attempt_;
  std::uint64_t lines_lost_ = 0;
};

}  // namespace darokleim::log

#endif  // DAROKLEIM_LOG_LOG_FILE_H

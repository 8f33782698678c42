#include "tools/cli/commands/sdk/call_log.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <system_error>

#include "base/unique_fd.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kLibraryLog = "adb_sdk";
constexpr std::string_view kChannelLog = "adb_channel";
constexpr int kOldParts = 4;  // of a long log: adb_sdk.4.log is the oldest

// Takes a number and what must follow it from the front of the text.
template <typename Number>
bool Take(std::string_view* text, Number* number, std::string_view end) {
  const auto [rest, error] = std::from_chars(text->data(), text->data() + text->size(), *number);
  if (error != std::errc()) return false;
  text->remove_prefix(static_cast<std::size_t>(rest - text->data()));
  if (text->substr(0, end.size()) != end) return false;
  text->remove_prefix(end.size());
  return true;
}

// Without time, level, module and thread, which are in brackets.
std::string_view TextOf(std::string_view line) {
  constexpr int kBrackets = 3;
  std::size_t end = 0;
  for (int i = 0; i < kBrackets && end != std::string_view::npos; ++i) end = line.find("] ", end + 1);
  return end == std::string_view::npos ? line : line.substr(end + 2);
}

std::vector<fs::path> PartsOf(const fs::path& folder, std::string_view log) {
  std::vector<fs::path> parts;
  for (int part = kOldParts; part >= 0; --part) {
    const std::string number = part == 0 ? "" : "." + std::to_string(part);
    fs::path path = folder / (std::string(log) + number + ".log");
    std::error_code error;
    if (fs::exists(path, error)) parts.push_back(std::move(path));
  }
  return parts;
}

std::vector<std::string> ReadLines(const std::vector<fs::path>& parts) {
  std::vector<std::string> lines;
  for (const auto& part : parts) {
    std::ifstream file(part, std::ios::binary);
    for (std::string line; std::getline(file, line);) lines.push_back(line);
  }
  return lines;
}

// What an application does with a phone is private.
void Append(const fs::path& path, std::string_view text) {
  constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC;
  const base::UniqueFd file(open(path.c_str(), kFlags, 0600));
  if (!file.valid()) throw ToolError(SystemErrorText(errno));
  while (!text.empty()) {
    const ssize_t size = write(file.get(), text.data(), text.size());
    if (size < 0 && errno != EINTR) throw ToolError(SystemErrorText(errno));
    if (size > 0) text.remove_prefix(static_cast<std::size_t>(size));
  }
}

}  // namespace

std::optional<ChannelCommand> ParseChannelLine(std::string_view text) {
  constexpr std::string_view kStatus = ": status ";
  const auto space = text.find(' ');
  const auto end = text.rfind(kStatus);
  if (end == std::string_view::npos) return std::nullopt;
  ChannelCommand command;
  command.route = text.substr(0, std::min(space, end));
  if (command.route != "adb" && command.route != "direct") return std::nullopt;
  if (space < end) command.arguments = text.substr(space + 1, end - space - 1);
  auto numbers = text.substr(end + kStatus.size());
  const bool is_command = Take(&numbers, &command.status, ", ") &&
                          Take(&numbers, &command.bytes, " bytes, ") &&
                          Take(&numbers, &command.milliseconds, " ms") && numbers.empty();
  return is_command ? std::optional(command) : std::nullopt;
}

CallLog::CallLog() {
  std::error_code error;
  std::string name = (fs::temp_directory_path(error) / "darokleim-sdk-XXXXXX").native();
  if (error || mkdtemp(name.data()) == nullptr) {
    throw ToolError("cannot create a temporary folder: " + SystemErrorText(errno) + ".");
  }
  folder_ = name;
}

CallLog::~CallLog() {
  std::error_code error;
  fs::remove_all(folder_, error);
}

std::optional<std::vector<ChannelCommand>> CallLog::Commands() const {
  const auto parts = PartsOf(folder_, kChannelLog);
  if (parts.empty()) return std::nullopt;
  std::vector<ChannelCommand> commands;
  for (const auto& line : ReadLines(parts)) {
    if (auto command = ParseChannelLine(TextOf(line))) commands.push_back(std::move(*command));
  }
  return commands;
}

std::vector<std::string> CallLog::Lines() const {
  return ReadLines(PartsOf(folder_, kLibraryLog));
}

void CallLog::CopyTo(const fs::path& folder) const {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw ToolError(error.message());
  for (const auto log : {kLibraryLog, kChannelLog}) {
    const auto parts = PartsOf(folder_, log);
    if (parts.empty()) continue;
    std::string text;
    for (const auto& line : ReadLines(parts)) text += line + "\n";
    Append(folder / (std::string(log) + ".log"), text);
  }
}

}  // namespace darokleim::cli

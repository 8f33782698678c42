// What the library and the command channel logged during a call.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_CALL_LOG_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_CALL_LOG_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace darokleim::cli {

// A command that the channel ran, as its log has it.
struct ChannelCommand {
  std::string route;      // "adb", or "direct" without adb
  std::string arguments;  // a text that the device types is left out
  int status = 0;
  long long bytes = 0;  // of output
  long long milliseconds = 0;
};

// From the text of a line: "adb -s X shell ls: status 0, 25 bytes, 11 ms". Nothing for another line.
std::optional<ChannelCommand> ParseChannelLine(std::string_view text);

// A folder for the logs of one call, removed with this object.
class CallLog {
 public:
  CallLog();
  ~CallLog();
  CallLog(const CallLog&) = delete;
  CallLog& operator=(const CallLog&) = delete;

  const std::filesystem::path& folder() const { return folder_; }

  // In the order in which they ended. Nothing when there is no log, as with a channel that does not write one.
  std::optional<std::vector<ChannelCommand>> Commands() const;
  // The library's own lines.
  std::vector<std::string> Lines() const;

  // Appends the logs to those in that folder. Throws ToolError, whose text is the reason alone.
  void CopyTo(const std::filesystem::path& folder) const;

 private:
  std::filesystem::path folder_;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_CALL_LOG_H

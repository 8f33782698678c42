// The tool as a whole: command line, commands, exit status.
#ifndef DAROKLEIM_TOOLS_CLI_TOOL_H
#define DAROKLEIM_TOOLS_CLI_TOOL_H

#include <optional>
#include <string_view>

#include "tools/cli/command_line/command.h"
#include "tools/cli/device/device.h"
#include "tools/cli/device/session.h"
#include "tools/cli/output/output.h"

namespace darokleim::cli {

// What a command works with.
class Tool {
 public:
  explicit Tool(Output output);

  // All commands; their options include references to this object.
  const Command& command_line() const { return command_line_; }

  // The library, started at the first call.
  Session& session();
  // The device that the user chose, or the only one.
  const Device& device();
  Output& output() { return output_; }
  SessionOptions& session_options() { return session_options_; }

  // Whether progress and reports of success are unwanted.
  bool is_quiet() const { return quiet_; }
  // Prints a line about what was done, unless that is unwanted.
  void Report(std::string_view line);
  // The same for a line with colours, whose names are safe for a terminal already.
  void ReportAsIs(std::string_view line);

 private:
  void AddGlobalOptions();

  Output output_;
  Command command_line_;
  SessionOptions session_options_;
  bool quiet_ = false;
  std::optional<Session> session_;
  std::optional<Device> device_;
};

// Returns the exit status.
int RunTool(int argc, const char* const* argv);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_TOOL_H

// The tool as a whole: command line, subcommands, exit status.
#ifndef DAROKLEIM_TOOLS_CLI_TOOL_H
#define DAROKLEIM_TOOLS_CLI_TOOL_H

#include <CLI/App.hpp>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tools/cli/device.h"
#include "tools/cli/output.h"
#include "tools/cli/session.h"

namespace darokleim::cli {

// What a subcommand works with.
class Tool {
 public:
  explicit Tool(Output output) : output_(output) {}

  // Names the function that carries out a subcommand, once the whole command line has been read.
  void OnRun(CLI::App& command, std::function<void()> action);

  // The library, started at the first call.
  Session& session();
  // The device that the user chose, or the only one.
  const Device& device();
  Output& output() { return output_; }
  SessionOptions& session_options() { return session_options_; }

  // Whether progress and reports of success are unwanted.
  bool& quiet() { return quiet_; }
  bool is_quiet() const { return quiet_; }
  // Prints a line about what was done, unless that is unwanted.
  void Report(std::string_view line);

  void RunChosenCommand() const { action_(); }

 private:
  Output output_;
  SessionOptions session_options_;
  bool quiet_ = false;
  std::optional<Session> session_;
  std::optional<Device> device_;
  std::function<void()> action_;
};

// Returns the exit status.
int RunTool(int argc, const char* const* argv);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_TOOL_H

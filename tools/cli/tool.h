// The tool as a whole: command line, commands, exit status.
#ifndef DAROKLEIM_TOOLS_CLI_TOOL_H
#define DAROKLEIM_TOOLS_CLI_TOOL_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/command_line/command.h"
#include "tools/cli/connection/connection.h"
#include "tools/cli/connection/error_text.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/document.h"
#include "tools/cli/output/output.h"
#include "tools/cli/output/progress.h"

namespace darokleim::cli {

// As given on the command line, for any command; empty where not.
struct GlobalOptions : ConnectionOptions {
  HostPath busybox;             // for `sdk`
  HostDirectory log_directory;  // the same
};

// What a command works with.
class Tool {
 public:
  explicit Tool(Output output);

  // All commands; their options include references to this object.
  const Command& command_line() const { return command_line_; }

  // The client, and the device that the user chose or the only one, each made at the first call. Failures of the client are
  // thrown as dk::Error (`.value()`); RunTool reports them.
  Connection& connection();
  dk::Client& client() { return connection().client(); }
  const dk::Device& phone() { return connection().phone(); }
  dk::Limits limits() { return connection().limits(); }

  // Whether --json was given: the command then fills the document and prints nothing else.
  bool is_json() const { return json_; }
  Document& document() { return document_; }
  // The command prints lines as they come, with --json an object a line, and no document.
  void PrintsLines() { prints_lines_ = true; }

  // Reports an error of one of several paths or packages; the command goes on and the exit status will be 1.
  void ReportFailure(const dk::Error& error);
  void ReportFailure(const std::string& message);
  // Does the work with each of them. An error that concerns only one of them is reported, and the rest goes on.
  template <typename List, typename Work>
  void ForEach(const List& list, Work work);
  // Ends the JSON document, and the output. Returns the exit status.
  int Finish();
  // The same after an error that ended the command. `json` describes it.
  void FinishWith(const std::string& json);
  std::string TextOf(const dk::Error& error) { return connection().TextOf(error); }

  // When a progress line is shown.
  ProgressMode progress_mode() const;

  Output& output() { return output_; }
  GlobalOptions& global_options() { return global_options_; }

  // Whether progress and reports of success are unwanted.
  bool is_quiet() const { return quiet_; }
  // Prints a line about what was done, unless that is unwanted or the output is JSON.
  void Report(std::string_view line);
  // The same for a line with colours, whose names are safe for a terminal already.
  void ReportAsIs(std::string_view line);

 private:
  void AddGlobalOptions();

  Output output_;
  Command command_line_;
  GlobalOptions global_options_;
  bool quiet_ = false;
  bool json_ = false;
  bool progress_ = false;
  bool prints_lines_ = false;
  Document document_;
  std::vector<std::string> failures_;  // JSON
  std::optional<Connection> connection_;
};

template <typename List, typename Work>
void Tool::ForEach(const List& list, Work work) {
  for (const auto& element : list) {
    try {
      work(element);
    } catch (const dk::Error& error) {
      if (!IsOfOneOperand(error.code())) throw;
      ReportFailure(error);
    } catch (const ToolError& error) {
      CheckCancelled();
      ReportFailure(error.what());
    }
  }
}

// What --version prints, without its line break.
extern const char kVersionText[];

// Returns the exit status.
int RunTool(int argc, const char* const* argv);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_TOOL_H

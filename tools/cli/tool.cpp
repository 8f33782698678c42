#include "tools/cli/tool.h"

#include <exception>
#include <string>

#include "darokleim.h"
#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/command_line/help.h"
#include "tools/cli/command_line/parse.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/standard_streams.h"

namespace darokleim::cli {
namespace {

constexpr char kExamples[] = R"(Examples:
  darokleim devices
  darokleim devices --json
  darokleim --adb ~/platform-tools/adb devices

Exit status: 0 done, 1 failed, 2 wrong usage, 3 no usable device, 130 cancelled with Ctrl-C.)";

void RunCommand(const Command& command, Tool& tool) try {
  const auto timeout = tool.global_options().timeout.value;
  if (timeout.count() > 0) CancelAfter(timeout);
  command.Run(tool);
} catch (const UsageError& error) {
  throw UsageError(std::string(error.what()) + "\n" + HelpHint(command));
}

// A message about what ended the command, and its exit status.
int Report(Tool& tool, const std::string& message, const std::string& json, int status) {
  PrintError(message);
  tool.FinishWith(json);
  return status;
}

int Run(const Command& command, Tool& tool) try {
  RunCommand(command, tool);
  return tool.Finish();
} catch (const dk::Error& error) {
  if (error.code() == DK_CANCELLED)
    return Report(tool, "cancelled", ErrorJson(error, "cancelled"), kExitCancelled);
  const std::string text = tool.TextOf(error);
  return Report(tool, text, ErrorJson(error, text), ExitStatusFor(error.code()));
} catch (const CommandStatus& end) {
  tool.Finish();
  return end.status();
} catch (const UsageError& error) {
  return Report(tool, error.what(), ErrorJson("USAGE", error.what()), kExitUsage);
} catch (const NoDeviceError& error) {
  return Report(tool, error.what(), ErrorJson("NO_DEVICE", error.what()), kExitNoDevice);
} catch (const Cancelled& error) {
  return Report(tool, error.what(), ErrorJson("CANCELLED", error.what()), kExitCancelled);
} catch (const OutputClosed&) {
  return kExitFailed;
} catch (const AnswerIsNo&) {
  return kExitFailed;
} catch (const std::exception& error) {
  return Report(tool, error.what(), ErrorJson("FAILED", error.what()), kExitFailed);
}

}  // namespace

const char kVersionText[] = "darokleim " DAROKLEIM_VERSION;

Tool::Tool(Output output)
    : output_(std::move(output)),
      command_line_({"darokleim", "Manage Android devices over adb", kExamples}),
      document_(output_) {
  AddGlobalOptions();
  for (const auto add_command : kCommands) add_command(command_line_);
}

void Tool::AddGlobalOptions() {
  command_line_.VersionFlag();
  command_line_.Option("-s,--serial", global_options_.serial,
                       "The device, as `darokleim devices` shows it. Without this option, the one named by "
                       "ANDROID_SERIAL, or the only one that is ready");
  command_line_.Flag("-q,--quiet", quiet_, "Print neither progress nor reports of success");
  command_line_.Flag("--json", json_, "Print one JSON document, as docs/json.md describes it");
  command_line_.Flag("--progress", progress_, "Show progress also where standard error is not a terminal");
  command_line_.Option(
      "--adb", global_options_.adb,
      "The adb executable. Without this option, adb is searched for in the tool's own folder, in "
      "PATH, and where the Android SDK and Homebrew install it");
  command_line_.Option("--timeout", global_options_.timeout, "Give up after so many seconds")
      .Called("SECONDS");
  command_line_.Option("--busybox", global_options_.busybox,
                       "A busybox that runs on the device, for functions of `sdk` that copy it there");
  command_line_.Option("--log-dir", global_options_.log_directory,
                       "Where `sdk` writes adb_sdk.log and adb_channel.log");
}

Connection& Tool::connection() {
  if (!connection_) {
    connection_.emplace(global_options_);
    EndWithinASecond();
  }
  return *connection_;
}

void Tool::ReportFailure(const dk::Error& error) {
  const std::string text = TextOf(error);
  PrintError(text);
  failures_.push_back(ErrorJson(error, text));
}

void Tool::ReportFailure(const std::string& message) {
  PrintError(message);
  failures_.push_back(ErrorJson("FAILED", message));
}

int Tool::Finish() {
  if (json_ && !prints_lines_) document_.End(failures_);
  output_.Flush();
  return failures_.empty() ? kExitOk : kExitFailed;
}

void Tool::FinishWith(const std::string& json) try {
  failures_.push_back(json);
  Finish();
} catch (const std::exception&) {
  // The error that is reported already was perhaps this one.
}

ProgressMode Tool::progress_mode() const {
  if (progress_) return ProgressMode::kAlways;
  return quiet_ ? ProgressMode::kNever : ProgressMode::kOnTerminal;
}

void Tool::Report(std::string_view line) {
  ReportAsIs(output_.Shown(line));
}

void Tool::ReportAsIs(std::string_view line) {
  if (!quiet_ && !json_) output_.Write(std::string(line) + "\n");
}

int RunTool(int argc, const char* const* argv) try {
  Tool tool{Output(TakeStandardOutput())};
  CancelOnSignals();
  const auto line = ParseCommandLine(tool.command_line(), kVersionText, argc, argv);
  tool.output().Write(line.text);
  return line.command == nullptr ? kExitOk : Run(*line.command, tool);
} catch (const UsageError& error) {
  PrintError(error.what());
  return kExitUsage;
} catch (const OutputClosed&) {
  return kExitFailed;
} catch (const std::exception& error) {
  PrintError(error.what());
  return kExitFailed;
}

}  // namespace darokleim::cli

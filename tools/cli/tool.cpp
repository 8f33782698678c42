#include "tools/cli/tool.h"

#include <exception>
#include <string>

#include "darokleim.h"
#include "tools/cli/cancel_on_signal.h"
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

Exit status: 0 done, 1 failed, 2 wrong usage, 130 cancelled with Ctrl-C.)";

void Run(int argc, const char* const* argv, Tool& tool) {
  const auto line = ParseCommandLine(tool.command_line(), "darokleim " DAROKLEIM_VERSION, argc, argv);
  tool.output().Write(line.text);
  if (line.command == nullptr) return;
  if (tool.session_options().timeout > 0) CancelAfter(tool.session_options().timeout);
  line.command->Run(tool);
}

}  // namespace

Tool::Tool(Output output)
    : output_(output), command_line_({"darokleim", "Manage Android devices over adb", kExamples}) {
  AddGlobalOptions();
  for (const auto add_command : kCommands) add_command(command_line_);
}

void Tool::AddGlobalOptions() {
  command_line_.VersionFlag();
  command_line_.Option("-s,--serial", session_options_.serial,
                       "The device, as `darokleim devices` shows it. Without this option, the one named by "
                       "ANDROID_SERIAL, or the only one that is ready");
  command_line_.Flag("-q,--quiet", quiet_, "Print neither progress nor reports of success");
  command_line_.Option(
      "--adb", session_options_.adb,
      "The adb executable. Without this option, adb is searched for in the tool's own folder, in "
      "PATH, and where the Android SDK and Homebrew install it");
  command_line_.Option("--timeout", session_options_.timeout, "Give up after so many seconds")
      .Called("SECONDS")
      .Between(1, 86400);
  command_line_.Option("--busybox", session_options_.busybox,
                       "A busybox that runs on the device; only du needs one");
  command_line_.Option("--log-dir", session_options_.log_directory,
                       "Where to write adb_sdk.log and adb_channel.log");
}

Session& Tool::session() {
  if (!session_) session_.emplace(session_options_);
  return *session_;
}

const Device& Tool::device() {
  if (!device_) device_.emplace(ChooseDevice(session(), session_options_.serial));
  return *device_;
}

void Tool::Report(std::string_view line) {
  ReportAsIs(output_.Shown(line));
}

void Tool::ReportAsIs(std::string_view line) {
  if (!quiet_) output_.Write(std::string(line) + "\n");
}

int RunTool(int argc, const char* const* argv) try {
  Tool tool{Output(TakeStandardOutput())};
  CancelOnSignals();
  Run(argc, argv, tool);
  return kExitOk;
} catch (const UsageError& error) {
  PrintError(std::string(error.what()) + "\nSee darokleim --help.");
  return kExitUsage;
} catch (const Cancelled& cancelled) {
  PrintError(cancelled.what());
  return kExitCancelled;
} catch (const OutputClosed&) {
  return kExitFailed;
} catch (const AnswerIsNo&) {
  return kExitFailed;
} catch (const std::exception& error) {
  PrintError(error.what());
  return kExitFailed;
}

}  // namespace darokleim::cli

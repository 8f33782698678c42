#include "tools/cli/tool.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <utility>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/standard_streams.h"

namespace darokleim::cli {
namespace {

constexpr char kExamples[] = R"(Examples:
  darokleim devices
  darokleim devices --json
  darokleim --adb ~/platform-tools/adb devices

Exit status: 0 done, 1 failed, 2 wrong usage, 130 cancelled with Ctrl-C.)";

void AddGlobalOptions(CLI::App& app, Tool& tool) {
  auto& options = tool.session_options();
  app.set_version_flag("--version", "darokleim " DAROKLEIM_VERSION, "Print the version and exit");
  app.add_option("-s,--serial", options.serial,
                 "The device, as `darokleim devices` shows it; otherwise that of ANDROID_SERIAL, or the only "
                 "one that is ready")
      ->type_name("SERIAL");
  app.add_flag("-q,--quiet", tool.quiet(), "Print neither progress nor reports of success");
  app.add_option(
         "--adb", options.adb,
         "The adb executable; otherwise looked for beside the tool, in PATH, and where the Android SDK and "
         "Homebrew install it")
      ->type_name("PATH");
  app.add_option("--busybox", options.busybox, "A busybox that runs on the device; only du needs one")
      ->type_name("PATH");
  app.add_option("--log-dir", options.log_directory, "Where to write adb_sdk.log and adb_channel.log")
      ->type_name("DIRECTORY");
}

void Run(int argc, const char* const* argv, Tool& tool) {
  CLI::App app("Manage Android devices over adb", "darokleim");
  app.footer(kExamples);
  app.require_subcommand(0, 1);  // none is told below, after what is not known
  app.fallthrough();             // global options may also stand after the subcommand
  AddGlobalOptions(app, tool);
  for (const auto add_command : kCommands) add_command(app, tool);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    tool.output().Write(app.help());
    return;
  } catch (const CLI::CallForVersion& version) {
    tool.output().Write(std::string(version.what()) + "\n");
    return;
  }
  if (app.get_subcommands().empty()) throw CLI::RequiredError("A command");
  tool.RunChosenCommand();
}

}  // namespace

void Tool::OnRun(CLI::App& command, std::function<void()> action) {
  command.callback([this, action = std::move(action)] { action_ = action; });
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
  if (!quiet_) output_.Write(std::string(line) + "\n");
}

int RunTool(int argc, const char* const* argv) try {
  Tool tool{Output(TakeStandardOutput())};
  CancelOnSignals();
  Run(argc, argv, tool);
  return kExitOk;
} catch (const CLI::ParseError& error) {
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

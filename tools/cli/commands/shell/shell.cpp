// darokleim shell
#include <unistd.h>

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/shell/shell_session.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/standard_input.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim shell                            a shell to work in
  darokleim shell ls -l /system/bin
  darokleim shell 'ps | grep com.example'
  darokleim shell -t top                     a program that draws on the whole screen
  tar c notes | darokleim shell 'cd /sdcard && tar x'
  darokleim shell <script.sh

The words are joined by spaces and read by the device's shell, as adb does it. The exit status is that of the command;
devices before Android 7 do not pass on that of a shell without COMMAND.

Standard input goes to the command as it comes, unless it is a terminal and -t is not given. Devices before Android 7 take none
for a COMMAND but with -t. In a loop that reads a list, -n leaves the list to the loop.

Without COMMAND and with -t every key goes to the device, also Ctrl-C. `exit` or Ctrl-D ends the shell.)";

struct Options {
  std::vector<std::string> words;
  bool terminal = false;
  bool no_input = false;
};

void Describe(Command& command, Options& options) {
  command
      .Positional("COMMAND", options.words,
                  "What the device's shell runs; otherwise it is a shell to work in")
      .TakesTheRest();
  auto& terminal = command.Flag("-t,--terminal", options.terminal, "Through a terminal of the device");
  command.Flag("-n,--no-input", options.no_input, "Leave standard input alone").Excludes(terminal);
}

// What the command prints: passed on, or kept for the document.
class Receiver {
 public:
  explicit Receiver(Tool& tool) : tool_(tool) {}

  void Take(dk_stream stream, std::string_view data) {
    if (tool_.is_json()) {
      const std::lock_guard lock(mutex_);
      (stream == DK_STDERR ? err_ : out_).append(data);
    } else if (stream == DK_STDERR) {
      WriteToStandardError(data);
    } else {
      tool_.output().Write(data);
    }
  }

  void End(int exit_status) {
    if (tool_.is_json()) {
      tool_.document().Member("stdout", JsonString(out_));
      tool_.document().Member("stderr", JsonString(err_));
      tool_.document().Member("exit_status", std::to_string(exit_status));
    }
    if (exit_status != 0) throw CommandStatus(exit_status);
  }

 private:
  // An error of a standard error that nobody reads is not an error of the command.
  static void WriteToStandardError(std::string_view data) {
    while (!data.empty()) {
      const ssize_t written = write(STDERR_FILENO, data.data(), data.size());
      if (written < 0 && errno != EINTR) return;
      if (written > 0) data.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  Tool& tool_;
  std::mutex mutex_;
  std::string out_, err_;
};

std::string Joined(const std::vector<std::string>& words) {
  std::string script;
  for (const auto& word : words) script += (script.empty() ? "" : " ") + word;
  return script;
}

int RunWithoutInput(Tool& tool, const std::string& script, Receiver& receiver) {
  dk::RunOptions run;
  run.on_output = [&receiver](dk_stream stream, std::string_view data) {
    receiver.Take(stream, data);
    return true;
  };
  return tool.phone().run_script(script, run, tool.limits()).value().exit_status;
}

int RunSession(Tool& tool, const SessionRequest& request, Receiver& receiver) {
  return RunShellSession(
      tool, request, [&receiver](dk_stream stream, std::string_view data) { receiver.Take(stream, data); });
}

// Old devices have no way to give input to a command. What does not exist is not missed.
int RunCommand(Tool& tool, const std::string& script, Receiver& receiver) try {
  return RunSession(tool, {script}, receiver);
} catch (const dk::Error& error) {
  if (error.code() != DK_UNSUPPORTED || !ReadStandardInput(1).empty()) throw;
  return RunWithoutInput(tool, script, receiver);
}

// A shell that reads commands from a pipe or a file. Old devices have one in a terminal alone, which may lose the end of its
// input: they get all commands at once.
int RunScriptFromInput(Tool& tool, Receiver& receiver) try {
  return RunSession(tool, {}, receiver);
} catch (const dk::Error& error) {
  if (error.code() != DK_UNSUPPORTED) throw;
  constexpr std::size_t kPiece = 4096;
  std::string script;
  for (std::string piece; !(piece = ReadStandardInput(kPiece)).empty();) script += piece;
  return RunWithoutInput(tool, script, receiver);
}

void Run(Tool& tool, const Options& options) {
  const bool from_terminal = isatty(STDIN_FILENO) == 1;
  const std::string script = Joined(options.words);
  Receiver receiver(tool);
  if (options.words.empty()) {
    if (tool.is_json()) throw UsageError("--json needs a COMMAND.");
    if (options.no_input) throw UsageError("--no-input needs a COMMAND.");
    const bool has_terminal = options.terminal || from_terminal;
    receiver.End(has_terminal ? RunSession(tool, {{}, true}, receiver) : RunScriptFromInput(tool, receiver));
  } else if (options.terminal) {
    receiver.End(RunSession(tool, {script, true}, receiver));
  } else if (options.no_input || from_terminal) {
    receiver.End(RunWithoutInput(tool, script, receiver));
  } else {
    receiver.End(RunCommand(tool, script, receiver));
  }
}

}  // namespace

void AddShellCommand(Command& root) {
  AddCommand<Options>(root, {"shell", "Work in the device's shell, or run a command in it", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli

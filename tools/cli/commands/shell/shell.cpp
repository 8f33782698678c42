// darokleim shell
#include <errno.h>
#include <unistd.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim shell ls -l /system/bin
  darokleim shell 'ps | grep com.example'
  echo 'id; date' | darokleim shell sh

The words are joined by spaces and read by the device's shell, as adb does it. The exit status is that of the command. What
standard input holds, unless it is a terminal, is read to its end and given to the command; devices before Android 7
take none. For a session by hand use `adb shell`.)";

struct Options {
  std::vector<std::string> words;
};

void Describe(Command& command, Options& options) {
  command.Positional("COMMAND", options.words, "What the device's shell runs").Required().TakesTheRest();
}

// An error of a standard error that nobody reads is no error of the command.
void WriteToStandardError(std::string_view data) {
  while (!data.empty()) {
    const ssize_t written = write(STDERR_FILENO, data.data(), data.size());
    if (written < 0 && errno != EINTR) return;
    if (written > 0) data.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::optional<std::string> Input() {
  if (isatty(STDIN_FILENO) == 1) return std::nullopt;
  std::string input;
  std::vector<char> block(64 * 1024);
  for (;;) {
    CheckCancelled();
    const ssize_t count = read(STDIN_FILENO, block.data(), block.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;  // also when it is closed
    input.append(block.data(), static_cast<std::size_t>(count));
  }
  return input.empty() ? std::nullopt : std::optional<std::string>(input);
}

void Run(Tool& tool, const Options& options) {
  std::string script;
  for (const auto& word : options.words) script += (script.empty() ? "" : " ") + word;
  dk::RunOptions run;
  run.input = Input();
  std::string out, err;  // for JSON
  run.on_output = [&](dk_stream stream, std::string_view data) {
    if (tool.is_json()) {
      (stream == DK_STDERR ? err : out).append(data);
    } else if (stream == DK_STDERR) {
      WriteToStandardError(data);
    } else {
      tool.output().Write(data);
    }
    return true;
  };
  const auto done = tool.phone().run_script(script, run, tool.limits()).value();
  if (tool.is_json()) {
    tool.document().Member("stdout", JsonString(out));
    tool.document().Member("stderr", JsonString(err));
    tool.document().Member("exit_status", std::to_string(done.exit_status));
  }
  if (done.exit_status != 0) throw CommandStatus(done.exit_status);
}

}  // namespace

void AddShellCommand(Command& root) {
  AddCommand<Options>(root, {"shell", "Run a command on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

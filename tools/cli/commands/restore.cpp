// darokleim restore
#include <darokleim.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "tools/cli/backup_question.h"
#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/system_error.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(The application must be installed. The phone asks its user first: unlock it and confirm. adb does not tell
whether that was done.

Examples:
  darokleim restore notes.ab)";

struct Options {
  std::string file;
};

void Describe(CLI::App& command, Options& options) {
  command.add_option("FILE", options.file, "A file of `darokleim backup` on this computer")->required();
}

void CheckIsThere(const std::string& file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) {
    throw ToolError("cannot restore " + file + ": " + SystemErrorText(errno) + ".");
  }
}

void Run(Tool& tool, const Options& options) {
  CheckIsThere(options.file);
  const auto& device = tool.device();
  tool.Report("Confirm the restore on the phone's screen.");
  const int code = AdbRestoreApp(device.serial(), options.file.c_str(), device.cancel());
  CloseQuestionIfCancelled(device);
  device.Check(code, "restore " + options.file);
  tool.Report("The phone has taken " + options.file + ".");
}

}  // namespace

void AddRestoreCommand(CLI::App& app, Tool& tool) {
  AddCommand<Options>(app, tool, {"restore", "Bring the data of a backup back", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

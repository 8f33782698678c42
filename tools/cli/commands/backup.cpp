// darokleim backup
#include <darokleim.h>
#include <sys/stat.h>

#include <string>

#include "tools/cli/backup_question.h"
#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device_words.h"
#include "tools/cli/errors.h"
#include "tools/cli/human_text.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(The phone asks its user first: unlock it and confirm. Ctrl-C, or `darokleim backup-stop` elsewhere, closes the
question. Applications may forbid backups, and most of those made for Android 12 and later do.

Examples:
  darokleim backup com.example.notes notes.ab
  darokleim restore notes.ab)";

// A backup without any file of an application: its header and an archive of nothing but folders, compressed. What is
// written of each application besides its files is longer.
constexpr off_t kLargestEmptyBackup = 200;

struct Options {
  std::string package;
  std::string file;
};

void Describe(CLI::App& command, Options& options) {
  AddPackageArgument(command, options.package);
  command.add_option("FILE", options.file, "File to write on this computer")->required();
}

// 0 when there is none.
off_t SizeOf(const std::string& file) {
  struct stat status {};
  return stat(file.c_str(), &status) == 0 ? status.st_size : 0;
}

void Run(Tool& tool, const Options& options) {
  const auto& device = tool.device();
  tool.Report("Confirm the backup on the phone's screen.");
  const int code =
      AdbBackupApp(device.serial(), options.package.c_str(), options.file.c_str(), device.cancel());
  CloseQuestionIfCancelled(device);
  device.Check(code, "back up " + options.package);
  const off_t size = SizeOf(options.file);
  if (size <= kLargestEmptyBackup) {
    throw ToolError("nothing was saved of " + options.package +
                    ": it was refused on the phone, or the application forbids backups.");
  }
  tool.Report("Saved " + SizeText(static_cast<std::uint64_t>(size)) + " in " + options.file + ".");
}

}  // namespace

void AddBackupCommand(CLI::App& app, Tool& tool) {
  AddCommand<Options>(app, tool, {"backup", "Save the data of an application in a file", kFooter}, Describe,
                      Run);
}

}  // namespace darokleim::cli

// darokleim backup, restore, backup-stop
#include <darokleim.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kBackupFooter[] =
    R"(The phone asks its user first: unlock it and confirm. Ctrl-C, or `darokleim backup-stop` elsewhere, closes the
question. Applications can forbid backups, and most of those made for Android 12 and later do.

Examples:
  darokleim backup com.example.notes notes.ab
  darokleim restore notes.ab)";

constexpr char kRestoreFooter[] =
    R"(The application must be installed. The phone asks its user first: unlock it and confirm. adb does not report
whether the user did.

Examples:
  darokleim restore notes.ab)";

constexpr char kStopFooter[] = R"(The backup or restore that waits for the answer then ends.

Examples:
  darokleim backup-stop)";

// A backup without any file of an application: its header and an archive of nothing but folders, compressed. What is
// written of each application besides its files is longer.
constexpr off_t kLargestEmptyBackup = 200;

// After Ctrl-C the question would stay on the phone. A second Ctrl-C ends the tool without this.
void CloseQuestionIfCancelled(const Device& device) {
  // Without a flag, which is set already; the result no longer matters.
  if (IsCancelled()) AdbStopDeviceBackupRestoreProcess(device.serial(), nullptr);
}

struct BackupOptions {
  Package package;
  HostPath file;
};

void DescribeBackup(Command& command, BackupOptions& options) {
  command.PackageArgument(options.package);
  command.Positional("FILE", options.file, "File to write on this computer").Required();
}

// 0 for a file that does not exist.
off_t SizeOf(const std::string& file) {
  struct stat status {};
  return stat(file.c_str(), &status) == 0 ? status.st_size : 0;
}

void RunBackup(Tool& tool, const BackupOptions& options) {
  const auto& device = tool.device();
  const auto& [package, file] = options;
  tool.Report("Confirm the backup on the phone's screen.");
  const int code = AdbBackupApp(device.serial(), package.name.c_str(), file.text.c_str(), device.cancel());
  CloseQuestionIfCancelled(device);
  device.Check(code, "back up " + package.name);
  const off_t size = SizeOf(file.text);
  if (size <= kLargestEmptyBackup) {
    throw ToolError("nothing was saved of " + package.name +
                    ": it was refused on the phone, or the application forbids backups.");
  }
  tool.Report("Saved " + SizeText(static_cast<std::uint64_t>(size)) + " in " + file.text + ".");
}

struct RestoreOptions {
  HostPath file;
};

void DescribeRestore(Command& command, RestoreOptions& options) {
  command.Positional("FILE", options.file, "Backup file of `darokleim backup` on this computer").Required();
}

void CheckReadable(const std::string& file) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) {
    throw ToolError("cannot restore " + file + ": " + SystemErrorText(errno) + ".");
  }
}

void RunRestore(Tool& tool, const RestoreOptions& options) {
  const std::string& file = options.file.text;
  CheckReadable(file);
  const auto& device = tool.device();
  tool.Report("Confirm the restore on the phone's screen.");
  const int code = AdbRestoreApp(device.serial(), file.c_str(), device.cancel());
  CloseQuestionIfCancelled(device);
  device.Check(code, "restore " + file);
  tool.Report("The phone has received " + file + ".");
}

void RunBackupStop(Tool& tool) {
  const auto& device = tool.device();
  device.Check(AdbStopDeviceBackupRestoreProcess(device.serial(), device.cancel()),
               "close the phone's question");
  tool.Report("The phone's question is closed.");
}

}  // namespace

void AddBackupCommand(Command& root) {
  AddCommand<BackupOptions>(root, {"backup", "Save the data of an application in a file", kBackupFooter},
                            DescribeBackup, RunBackup);
}

void AddRestoreCommand(Command& root) {
  AddCommand<RestoreOptions>(root, {"restore", "Restore a backup", kRestoreFooter}, DescribeRestore,
                             RunRestore);
}

void AddBackupStopCommand(Command& root) {
  AddCommand(root, {"backup-stop", "Close the phone's question about a backup or a restore", kStopFooter},
             RunBackupStop);
}

}  // namespace darokleim::cli

// darokleim backup, restore, backup-stop
#include <darokleim.h>
#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "base/unique_fd.h"
#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/package.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/host_file.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

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
constexpr std::uint64_t kLargestEmptyBackup = 200;

// After Ctrl-C the question would stay on the phone. A second Ctrl-C ends the tool without this.
void CloseQuestionIfCancelled(const Device& device) {
  if (!IsCancelled()) return;
  const CleanUpScope limit;
  AdbStopDeviceBackupRestoreProcess(device.serial(), CleanUpScope::flag());
}

struct BackupOptions {
  Package package;
  HostPath file;
};

void DescribeBackup(Command& command, BackupOptions& options) {
  command.PackageArgument(options.package);
  command.Positional("FILE", options.file, "File to write on this computer").Required();
}

void CheckCanBeReplaced(const fs::path& file) {
  std::error_code error;
  const auto there = fs::status(file, error);
  if (fs::exists(there) && !fs::is_regular_file(there)) {
    throw ToolError("cannot write the backup to " + file.native() + ": it is not a regular file.");
  }
}

// The device and the package are checked before the file is touched, and the file appears when it is complete.
void RunBackup(Tool& tool, const BackupOptions& options) {
  const std::string& package = options.package.name;
  const fs::path target = AbsolutePath(options.file.text);
  CheckCanBeReplaced(target);
  const auto& device = tool.device();
  RequireInstalled(device, package);
  UnfinishedOnHost file(target);
  tool.Report("Confirm the backup on the phone's screen.");
  const int code = AdbBackupApp(device.serial(), package.c_str(), file.path().c_str(), device.cancel());
  CloseQuestionIfCancelled(device);
  device.Check(code, "back up " + package);
  const auto size = SizeOnHost(file.path());
  if (size <= kLargestEmptyBackup) {
    throw ToolError("nothing was saved of " + package +
                    ": it was refused on the phone, or the application forbids backups.");
  }
  file.PutInPlace();
  tool.Report("Saved " + SizeText(size) + " in " + options.file.text + ".");
}

struct RestoreOptions {
  HostPath file;
};

void DescribeRestore(Command& command, RestoreOptions& options) {
  command.Positional("FILE", options.file, "Backup file of `darokleim backup` on this computer").Required();
}

// adb sends any file, and the phone does not say that it could not read it.
void CheckIsBackup(const std::string& path) {
  constexpr std::string_view kBegin = "ANDROID BACKUP\n";
  const std::string action = "cannot restore " + path + ": ";
  std::string begin(kBegin.size(), '\0');
  const base::UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.valid()) throw ToolError(action + SystemErrorText(errno) + ".");
  const ssize_t size = read(file.get(), begin.data(), begin.size());
  if (size < 0) throw ToolError(action + SystemErrorText(errno) + ".");
  if (begin != kBegin) throw ToolError(action + "it is not an Android backup.");
}

void RunRestore(Tool& tool, const RestoreOptions& options) {
  const std::string& file = options.file.text;
  CheckIsBackup(file);
  const auto& device = tool.device();
  tool.Report("Confirm the restore on the phone's screen.");
  const int code = AdbRestoreApp(device.serial(), AbsolutePath(file).c_str(), device.cancel());
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

// The form pull: one file of a phone to this computer.
#include <cerrno>

#include "channel/direct/error_text.h"
#include "channel/direct/host_file.h"
#include "channel/direct/sync_call.h"
#include "channel/direct/transfer_report.h"

namespace darokleim::channel::direct {
namespace {

struct Target {
  std::string path;
  std::string problem;  // adb's words why there cannot be such a file; empty if there can
};

Target FindTarget(const std::string& source, const std::string& target) {
  struct stat status;
  const int error = StatOf(target, &status);
  if (error == 0) return {S_ISDIR(status.st_mode) ? target + '/' + NameOf(source) : target, ""};
  if (error != ENOENT) return {"", "failed to access '" + target + "': " + ErrorText(error)};
  const int folder_error = StatOf(FolderOf(target), &status);
  if (folder_error == 0) return {target, ""};
  return {"", "cannot create file/directory '" + target + "': " + ErrorText(folder_error)};
}

Ending Receive(const Call& call, const adb::FileStatus& status, const std::string& path,
               adb::SyncConnection* sync) {
  const std::string& source = call.form.operands[0];
  TransferReport report(Direction::kPull, source);
  ReceivedFile file(path);
  if (const int error = file.Create(); error != 0) {
    return FailTransfer(call, "cannot create '" + path + "': " + ErrorText(error));
  }
  int write_error = 0;
  const auto write = [&](std::string_view data) {
    write_error = file.Write(data);
    if (write_error == 0) report.Add(data.size());
    return write_error == 0;
  };
  const adb::Status received = sync->Receive(source, write, call.limits);
  if (!received.ok()) {
    switch (received.error().code) {
      case adb::ErrorCode::kStopped:
        return FailTransfer(call, "cannot write '" + path + "': " + ErrorText(write_error),
                            report.Progress(status.size));
      case adb::ErrorCode::kRefused:
        return FailTransfer(call,
                            "failed to copy '" + source + "' to '" + path + "': remote " +
                                std::string(UpToZero(received.error().message)),
                            report.Progress(status.size));
      default:
        return EndWithin(received.error());
    }
  }
  file.Keep();
  if (call.form.option && file.SetTimeAndMode(status.modified, static_cast<mode_t>(status.mode)) != 0) {
    return call.Finish(report.Progress(status.size), 1);
  }
  return call.Finish(report.Summary(1, 0), 0);
}

SyncAttempt Pull(const Call& call, adb::SyncConnection* sync) {
  const std::string& source = call.form.operands[0];
  const Target target = FindTarget(source, call.form.operands[1]);
  if (!target.problem.empty()) return FailTransfer(call, target.problem);

  const adb::Result<adb::FileStatus> status = StatOfTarget(sync, source, call.limits);
  const std::string no_status = "failed to stat remote object '" + source + "': ";
  if (!status.ok()) {
    if (status.error().code != adb::ErrorCode::kTooLong) return EndOfFirstRequest(status.error());
    return call.Finish(PathTooLong(source.size()) + kSyncError + no_status + ErrorText(ENAMETOOLONG) + '\n',
                       1);
  }
  if (!IsThere(*status)) {
    return FailTransfer(call, status->second_form ? no_status + ErrorText(ErrorOfPhone(status->error))
                                                  : "remote object '" + source + "' does not exist");
  }
  // adb copies a folder with all that is in it. Nothing but its status was asked for.
  if (S_ISDIR(status->mode)) return Attempt(kGiveWay);
  if (!S_ISREG(status->mode) && !S_ISBLK(status->mode) && !S_ISCHR(status->mode)) {
    char mode[16];
    snprintf(mode, sizeof mode, "%o", status->mode);
    return call.Finish("adb: warning: skipping special file '" + source + "' (mode = 0o" + mode + ")\n", 0);
  }
  return Receive(call, *status, target.path, sync);
}

}  // namespace

Attempt RunPull(const Call& call) {
  if (FileSizesAreLimited()) return kGiveWay;
  return RunOnSyncConnection(call, [&](adb::SyncConnection* sync) { return Pull(call, sync); });
}

}  // namespace darokleim::channel::direct

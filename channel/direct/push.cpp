// The form push: one file of this computer to a phone.
#include <fcntl.h>

#include <cerrno>
#include <vector>

#include "base/read_some.h"
#include "base/standard_streams.h"
#include "base/unique_fd.h"
#include "channel/direct/error_text.h"
#include "channel/direct/host_file.h"
#include "channel/direct/sync_call.h"
#include "channel/direct/transfer_report.h"

namespace darokleim::channel::direct {
namespace {

struct LocalFile {
  std::string path;
  int error = 0;  // an errno; the status is known if it is 0
  struct stat status = {};
};

// adb reads a file that is smaller before it sends anything.
bool IsSmall(const LocalFile& file) {
  return file.status.st_size < static_cast<off_t>(adb::kLongestSyncData);
}

class Sending {
 public:
  Sending(const Call& call, const LocalFile& file, std::string target, adb::SyncConnection* sync)
      : call_(call),
        file_(file),
        target_(std::move(target)),
        sync_(sync),
        report_(Direction::kPush, file.path) {}

  Ending Run() {
    if (call_.form.option) {
      const adb::Result<adb::FileStatus> there =
          sync_->Stat(target_, adb::SyncConnection::Links::kThemselves, call_.limits);
      if (there.ok() ? IsUnchanged(*there) : there.error().code != adb::ErrorCode::kTooLong) {
        return there.ok() ? call_.Finish(report_.Summary(0, 1), 0) : EndWithin(there.error());
      }
      if (!there.ok() && !call_.Print(PathTooLong(target_.size()))) return {Ending::kOutputRefused};
    }
    const base::UniqueFd content =
        base::OpenClearOfStandardStreams([this] { return open(file_.path.c_str(), O_RDONLY | O_CLOEXEC); });
    if (!content.valid()) return FailToRead(IsSmall(file_) ? "failed to read all of" : "opening", errno);
    return Send(content.get());
  }

 private:
  // The times alone are compared.
  bool IsUnchanged(const adb::FileStatus& there) const {
    return IsThere(there) && there.modified == static_cast<int64_t>(Modified());
  }
  uint32_t Modified() const { return static_cast<uint32_t>(file_.status.st_mtime); }

  Ending FailToRead(const std::string& what, int error) {
    const std::string locally = what == "failed to read all of" ? "" : " locally failed";
    return FailTransfer(call_, what + " '" + file_.path + "'" + locally + ": " + ErrorText(error),
                        report_.Summary(0, 0));
  }

  Ending Send(int content) {
    std::vector<char> buffer(adb::kLongestSyncData);
    ssize_t count = base::ReadSome(content, buffer.data(), buffer.size());
    if (count < 0) return FailToRead(IsSmall(file_) ? "failed to read all of" : "reading", errno);
    adb::Status status = sync_->BeginSend(target_, file_.status.st_mode, call_.limits);
    if (!status.ok() && status.error().code == adb::ErrorCode::kTooLong) return FailForLength();
    while (status.ok() && count > 0) {
      status = sync_->SendData({buffer.data(), static_cast<size_t>(count)}, call_.limits);
      report_.Add(static_cast<size_t>(count));
      if (!status.ok()) break;
      count = base::ReadSome(content, buffer.data(), buffer.size());
      if (count < 0) return FailToRead("reading", errno);
    }
    if (status.ok()) status = sync_->EndSend(Modified(), call_.limits);
    if (status.ok()) status = sync_->AwaitSends(0, call_.limits);
    if (status.ok()) return call_.Finish(report_.Summary(1, 0), 0);
    if (status.error().code != adb::ErrorCode::kRefused) return EndWithin(status.error());
    return FailTransfer(call_,
                        "failed to copy '" + file_.path + "' to '" + target_ + "': remote " +
                            std::string(UpToZero(status.error().message)),
                        report_.Summary(0, 0));
  }

  Ending FailForLength() {
    const std::string message = target_ + ',' + std::to_string(file_.status.st_mode);
    const std::string length = std::to_string(message.size());
    if (IsSmall(file_))
      return FailTransfer(call_, "SendSmallFile failed: path too long: " + length, report_.Summary(0, 0));
    if (!call_.Print(PathTooLong(message.size()))) return {Ending::kOutputRefused};
    return FailTransfer(call_, "failed to send ID_SEND message '" + message + "': " + ErrorText(ENAMETOOLONG),
                        report_.Summary(0, 0));
  }

  const Call& call_;
  const LocalFile& file_;
  const std::string target_;
  adb::SyncConnection* const sync_;
  TransferReport report_;
};

SyncAttempt Push(const Call& call, const LocalFile& file, adb::SyncConnection* sync) {
  const std::string& target = call.form.operands[1];
  const adb::Result<adb::FileStatus> there = StatOfTarget(sync, target, call.limits);
  const std::string no_status = "stat failed when trying to push to " + target + ": ";
  if (!there.ok()) {
    if (there.error().code != adb::ErrorCode::kTooLong) return EndOfFirstRequest(there.error());
    return call.Finish(PathTooLong(target.size()) + kSyncError + no_status + ErrorText(ENAMETOOLONG) + '\n',
                       1);
  }
  const bool exists = IsThere(*there);
  if (!exists && there->second_form && ErrorOfPhone(there->error) != ENOENT) {
    return FailTransfer(call, no_status + ErrorText(ErrorOfPhone(there->error)));
  }
  const bool folder = exists && S_ISDIR(there->mode);
  if (exists && !folder && target.back() == '/')
    return FailTransfer(call, "failed to access '" + target + "': Not a directory");
  if (file.error != 0) return FailTransfer(call, "cannot stat '" + file.path + "': " + ErrorText(file.error));
  if (!folder) return Sending(call, file, target, sync).Run();
  return Sending(call, file, target + (target.back() == '/' ? "" : "/") + NameOf(file.path), sync).Run();
}

}  // namespace

Attempt RunPush(const Call& call) {
  LocalFile file{call.form.operands[0]};
  file.error = StatOf(file.path, &file.status);
  // adb copies a folder with all that is in it, and looks at what else there is.
  if (file.error == 0 && !S_ISREG(file.status.st_mode)) return kGiveWay;
  return RunOnSyncConnection(call, [&](adb::SyncConnection* sync) { return Push(call, file, sync); });
}

}  // namespace darokleim::channel::direct

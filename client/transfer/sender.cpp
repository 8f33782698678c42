#include "client/transfer/sender.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <ctime>
#include <limits>
#include <vector>

#include "base/read_some.h"
#include "base/standard_streams.h"
#include "base/unique_fd.h"
#include "client/phone_path.h"

namespace darokleim::client {
namespace {

// Files that the phone has not answered yet. At so many, half of them are awaited: not one after the other, each with a write of its
// own.
constexpr std::size_t kMostUnanswered = 256;
// Files get their names after so many of them, or so many bytes; the first ones of a transfer that takes its time before more than
// half of it is sent.
constexpr std::size_t kMostStaged = 1024;
constexpr std::uint64_t kMostBytesStaged = std::uint64_t{16} * 1024 * 1024;
// Towards the end, when as many have arrived as are left, so that not many wait for their names after the last one. Of fewer a
// command for their names alone takes longer.
constexpr std::size_t kWorthACommand = 200;
constexpr std::uint64_t kShortTransfer = std::uint64_t{1} * 1024 * 1024;

constexpr std::uint32_t kUsualPermissions = 0644;
constexpr std::uint32_t kPermissionsSent = 0777;

std::string Sending(const HostFile& file) {
  return "send " + Shown(file.path);
}

// The protocol counts seconds in 32 bits.
std::uint32_t ProtocolTime(std::int64_t seconds) {
  if (seconds < 0) return 0;
  constexpr std::int64_t kMost = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(seconds > kMost ? kMost : seconds);
}

Error ChangedWhileRead(const HostFile& file) {
  Error error = Failed(DK_CHANGED, Sending(file), "the file changed while it was read");
  error.path = file.path;
  error.on_host = true;
  return error;
}

}  // namespace

Status Sender::Send(HostFile file, std::string folder, std::string name) {
  staging_.Expect(folder);
  if (IsToCommitBefore(file)) {
    if (Status status = Await(0); !status.ok()) return status;
    if (Status committed = Commit(); !committed.ok()) return committed;
  }
  under_way_.push_back({std::move(file), std::move(folder), std::move(name), false});
  if (Status sent = SendUnderWay(); !sent.ok()) return sent;
  return CommitIfMuch();
}

Status Sender::MakeFolder(std::string path) {
  staging_.Make(std::move(path));
  return CommitIfMuch();
}

bool Sender::IsToCommitBefore(const HostFile& file) const {
  const std::uint64_t total = tally_->expected_bytes();
  const bool has_something = staging_.waiting() > 0 || sent_ > 0;
  return !has_committed_ && total > kShortTransfer && has_something &&
         tally_->bytes_done() + file.size > total / 2;
}

Status Sender::CommitIfMuch() {
  const std::size_t waiting = staging_.waiting();
  const std::uint64_t left = tally_->files_left();
  const bool are_few_left = left >= kWorthACommand && waiting >= left;
  return waiting >= kMostStaged || bytes_staged_ >= kMostBytesStaged || are_few_left ? Commit() : Status();
}

Status Sender::Commit() {
  bytes_staged_ = 0;
  has_committed_ = true;
  return staging_.Commit(limits_, ReportFailure());
}

Status Sender::Finish() {
  do {
    if (Status sent = SendUnderWay(); !sent.ok()) return sent;
    if (Status status = Await(0); !status.ok()) return status;
  } while (!under_way_.empty());
  return staging_.Finish(limits_, ReportFailure());
}

Staging::Fail Sender::ReportFailure() {
  return [this](Error error) { return tally_->Failed(std::move(error)); };
}

Status Sender::SendUnderWay() {
  while (sent_ < under_way_.size()) {
    if (Status next = SendNext(); !next.ok()) return next;
    if (sent_ == 0) continue;  // nothing is under way on a connection
    const bool awaits_each = one_by_one_ > 0;
    if (awaits_each) --one_by_one_;
    if (!awaits_each && sent_ < kMostUnanswered) continue;
    if (Status status = Await(awaits_each ? 0 : kMostUnanswered / 2); !status.ok()) return status;
  }
  return {};
}

Status Sender::SendNext() {
  if (!sync_) {
    auto sync = OpenSync(features_, tally_->what(), limits_);
    if (!sync.ok()) return sync.TakeError();
    sync_.emplace(*std::move(sync));
  }
  File& file = under_way_[sent_];
  const base::UniqueFd opened = base::OpenClearOfStandardStreams(
      [&file] { return open(file.host.path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY); });
  if (!opened.valid()) return FailAt(sent_, FromHostErrno(errno, Sending(file.host), file.host.path));
  if (!file.counted) tally_->Begin(file.host.path.c_str(), file.host.size);

  const std::uint32_t permissions =
      tally_->options().keep_modes ? file.host.permissions & kPermissionsSent : kUsualPermissions;
  const std::string path = staging_.PathFor(file.folder, file.name);
  if (adb::Status begun = sync_->connection.BeginSend(path, adb::kRegularFile | permissions, limits_);
      !begun.ok()) {
    if (begun.error().code != adb::ErrorCode::kTooLong) return Refused(begun.error());
    return FailAt(sent_,
                  SyncError(device_, begun.error(), Sending(file.host), Joined(file.folder, file.name)));
  }
  ++sent_;
  std::optional<Error> host_error;
  const adb::Status sent = SendContent(opened.get(), file, &host_error);
  file.counted = true;
  if (host_error) {  // the daemon drops what is not ended with the connection
    TakeWhole();
    const std::size_t at = sent_ - 1;
    Disconnect();
    return FailAt(at, *std::move(host_error));
  }
  if (!sent.ok()) return Refused(sent.error());
  TakeWhole();
  return {};
}

Status Sender::FailAt(std::size_t index, Error error) {
  staging_.Drop(under_way_[index].folder);
  under_way_.erase(under_way_.begin() + static_cast<std::ptrdiff_t>(index));
  return tally_->Failed(std::move(error));
}

adb::Status Sender::SendContent(int descriptor, const File& file, std::optional<Error>* host_error) {
  const auto fail = [&](Error error) {
    *host_error = std::move(error);
    return adb::Status();
  };
  const auto fail_by_errno = [&] { return fail(FromHostErrno(errno, Sending(file.host), file.host.path)); };
  struct stat before = {};
  if (fstat(descriptor, &before) != 0) return fail_by_errno();
  block_.resize(kBlock);
  // Files of the system's own say no size, whatever they hold.
  const auto said = static_cast<std::uint64_t>(before.st_size);
  for (std::uint64_t read = 0; read < said || said == 0;) {
    if (Status asked = tally_->Ask(); !asked.ok()) return fail(asked.TakeError());
    const ssize_t count = base::ReadSome(descriptor, block_.data(), block_.size());
    if (count < 0) return fail_by_errno();
    if (count == 0) break;
    const auto size = static_cast<std::size_t>(count);
    read += size;
    if (adb::Status sent = sync_->connection.SendData({block_.data(), size}, limits_); !sent.ok())
      return sent;
    if (file.counted) {
      tally_->SentAgain(size);
    } else {
      tally_->Sent(size);
    }
  }
  struct stat after = {};
  if (fstat(descriptor, &after) != 0) return fail_by_errno();
  if (after.st_size != before.st_size || after.st_mtime != before.st_mtime)
    return fail(ChangedWhileRead(file.host));
  const std::int64_t time = tally_->options().keep_times ? before.st_mtime : std::time(nullptr);
  return sync_->connection.EndSend(ProtocolTime(time), limits_);
}

Status Sender::Await(std::size_t unanswered) {
  if (!sync_ || sent_ == 0) return {};
  const adb::Status status = sync_->connection.AwaitSends(unanswered, limits_);
  if (!status.ok()) return Refused(status.error());
  TakeWhole();
  return {};
}

void Sender::TakeWhole() {
  while (sent_ > sync_->connection.unanswered()) {
    const File& file = under_way_.front();
    staging_.Whole(file.folder, file.name);
    bytes_staged_ += file.host.size;
    tally_->Whole();
    under_way_.pop_front();
    --sent_;
  }
}

void Sender::Disconnect() {
  sync_.reset();
  sent_ = 0;
}

Status Sender::Refused(const adb::Error& error) {
  TakeWhole();
  const std::size_t unanswered = sent_;
  Disconnect();
  if (under_way_.empty()) return DeviceError(device_, error, tally_->what());
  const File& first = under_way_.front();
  if (error.code == adb::ErrorCode::kRefused || error.code == adb::ErrorCode::kTooLong) {
    Error refused = SyncError(device_, error, Sending(first.host), Joined(first.folder, first.name));
    return FailAt(0, std::move(refused));
  }
  const bool may_be_a_refusal = error.code == adb::ErrorCode::kConnectionBroken && unanswered > 1;
  if (may_be_a_refusal) {
    one_by_one_ = unanswered;
    return {};
  }
  Error lost = DeviceError(device_, error, Sending(first.host));
  lost.path = first.host.path;
  return lost;
}

}  // namespace darokleim::client

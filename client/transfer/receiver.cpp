#include "client/transfer/receiver.h"

#include <cerrno>

namespace darokleim::client {
namespace {

constexpr std::size_t kMostAsked = 64;

}  // namespace

std::string Fetching(const std::string& path) {
  return "fetch " + Shown(path);
}

Status Receiver::Fetch(PhoneFile file, std::shared_ptr<HostFolder> folder, std::string name) {
  const Existing there = folder->Look(name);
  if (there.exists) {
    if (Status checked = folder->CheckName(name); !checked.ok()) return tally_->Failed(checked.TakeError());
  }
  switch (Decide(tally_->options().existing, there, file.size, file.modified)) {
    case Decision::kSkip:
      tally_->Skipped(file.size);
      return {};
    case Decision::kIsFolder:
    case Decision::kExists: {
      const std::string path = folder->path() + "/" + name;
      return tally_->Failed(FromHostErrno(there.is_folder ? EISDIR : EEXIST, Fetching(file.path), path));
    }
    case Decision::kTransfer:
      break;
  }
  files_.push_back({std::move(file), std::move(folder), std::move(name)});
  while (files_.size() > kMostAsked) {
    if (Status received = ReceiveFirst(); !received.ok()) return received;
  }
  return AskAhead();
}

Status Receiver::Finish() {
  while (!files_.empty()) {
    if (Status received = ReceiveFirst(); !received.ok()) return received;
  }
  return {};
}

Status Receiver::AskAhead() {
  if (!sync_) {
    auto sync = OpenSync(features_, tally_->what(), limits_);
    if (!sync.ok()) return sync.TakeError();
    sync_.emplace(*std::move(sync));
  }
  const std::size_t most = one_by_one_ > 0 ? 1 : kMostAsked;
  while (asked_ < files_.size() && asked_ < most) {
    const std::string& path = files_[asked_].phone.path;
    if (auto requested = sync_->connection.RequestContent(path); !requested.ok()) {
      Error error = SyncError(device_, requested.error(), Fetching(path), path);
      files_.erase(files_.begin() + static_cast<std::ptrdiff_t>(asked_));
      if (Status failed = tally_->Failed(std::move(error)); !failed.ok()) return failed;
      continue;
    }
    ++asked_;
  }
  return {};
}

Status Receiver::ReceiveFirst() {
  if (Status asked = AskAhead(); !asked.ok()) return asked;
  if (files_.empty()) return {};
  const File& file = files_.front();
  tally_->Begin(file.phone.path.c_str(), file.phone.size);
  auto target = ReceivedFile::Create(file.folder, file.name);
  std::optional<Error> host_error;
  if (!target.ok()) host_error = target.TakeError();
  adb::Status received = ReceiveContent(host_error ? nullptr : target->get(), &host_error);
  if (!received.ok() && !host_error) return Refused(received.error());
  if (!received.ok()) Disconnect();
  if (!host_error) {
    const dk_transfer_options& options = tally_->options();
    const auto modified = options.keep_times ? std::optional(file.phone.modified) : std::nullopt;
    const std::uint32_t permissions = options.keep_modes ? file.phone.permissions : 0;
    const bool may_replace = options.existing == DK_REPLACE || options.existing == DK_SKIP_SAME;
    if (Status committed = (*target)->Commit(modified, permissions, may_replace); !committed.ok()) {
      host_error = committed.TakeError();
    }
  }
  files_.pop_front();
  if (asked_ > 0) --asked_;
  if (one_by_one_ > 0) --one_by_one_;
  if (host_error) return tally_->Failed(*std::move(host_error));
  tally_->Done();
  return {};
}

// What cannot be written is still read to its end: the answers to the files after it follow.
adb::Status Receiver::ReceiveContent(ReceivedFile* target, std::optional<Error>* host_error) {
  constexpr std::uint64_t kReadOn = 1024 * 1024;
  std::uint64_t dropped = 0;
  const auto receive = [&](std::string_view data) {
    if (Status asked = tally_->Ask(); !asked.ok()) {
      *host_error = asked.TakeError();
      return false;
    }
    tally_->Sent(data.size());
    if (!*host_error && target != nullptr) {
      if (Status written = target->Write(data); !written.ok()) *host_error = written.TakeError();
    }
    if (*host_error) dropped += data.size();
    return dropped < kReadOn;
  };
  return sync_->connection.ReadContent(receive, limits_);
}

void Receiver::Disconnect() {
  sync_.reset();
  asked_ = 0;
}

Status Receiver::Refused(const adb::Error& error) {
  const std::size_t asked = asked_;
  Disconnect();
  const std::string path = files_.front().phone.path;
  if (error.code == adb::ErrorCode::kRefused) {
    files_.pop_front();
    if (one_by_one_ > 0) --one_by_one_;
    return tally_->Failed(SyncError(device_, error, Fetching(path), path));
  }
  const bool may_be_a_refusal = error.code == adb::ErrorCode::kConnectionBroken && asked > 1;
  if (may_be_a_refusal) {
    one_by_one_ = asked;
    return {};
  }
  Error lost = DeviceError(device_, error, Fetching(path));
  lost.path = path;
  return lost;
}

}  // namespace darokleim::client

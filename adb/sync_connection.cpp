#include "adb/sync_connection.h"

#include <algorithm>
#include <cassert>

#include "adb/message.h"
#include "base/little_endian.h"

namespace darokleim::adb {

namespace {

// Room for a message of data, and for what comes with it.
constexpr size_t kBuffer = 2 * kLongestSyncData;
// Small files are gathered up to this size before they are written.
constexpr size_t kGathered = 32 * 1024;
constexpr size_t kLongestRefusal = 64 * 1024;

Error Misuse(std::string_view what) {
  return {ErrorCode::kMisuse, std::string(what)};
}

}  // namespace

SyncConnection::SyncConnection(Connection connection, const FeatureSet& features)
    : connection_(std::move(connection)),
      stat_v2_(features.stat_v2()),
      list_v2_(features.list_v2()),
      send_receive_v2_(features.send_receive_v2()) {
  connection_.GrowBuffer(kBuffer);
}

Result<SyncConnection> SyncConnection::Start(Connection connection, const FeatureSet& features,
                                             const Limits& limits) {
  if (Status status = StartService(&connection, "sync:", limits); !status.ok()) return status.TakeError();
  return SyncConnection(std::move(connection), features);
}

Result<SyncConnection> SyncConnection::Start(const ServerAddress& server, const DeviceSelector& device,
                                             const FeatureSet& features, const Limits& limits) {
  Result<DeviceConnection> selected = SelectDevice(server, device, limits);
  if (!selected.ok()) return selected.TakeError();
  return Start(std::move(selected->connection), features, limits);
}

// --- Requests

Status SyncConnection::Request(Kind kind, bool second_form, std::uint32_t id, std::string_view path,
                               std::string_view more) {
  if (path.size() > kLongestSyncPath) {
    return Error{ErrorCode::kTooLong, "a path of " + std::to_string(path.size()) + " bytes"};
  }
  if (failed_) return Misuse("a request after a failure");
  if (in_file_) return Misuse("a request in the middle of a file that is sent");
  requests_.push_back({kind, second_form, SyncRequest(id, path).append(more)});
  SendAhead();
  return {};
}

Status SyncConnection::RequestStat(std::string_view path, Links links) {
  if (links == Links::kFollowed && !stat_v2_)
    return Error{ErrorCode::kUnsupported, "the status of a link's target"};
  const std::uint32_t second = links == Links::kFollowed ? sync_id::kStatTarget2 : sync_id::kStatLink2;
  return Request(Kind::kStat, stat_v2_, stat_v2_ ? second : sync_id::kStat1, path);
}

Status SyncConnection::RequestList(std::string_view path) {
  return Request(Kind::kList, list_v2_, list_v2_ ? sync_id::kList2 : sync_id::kList1, path);
}

Status SyncConnection::RequestContent(std::string_view path) {
  if (!send_receive_v2_) return Request(Kind::kContent, false, sync_id::kReceive1, path);
  // The second form has a further message: its flags, here without compression.
  return Request(Kind::kContent, true, sync_id::kReceive2, path, SyncHeader(sync_id::kReceive2, 0));
}

void SyncConnection::SendAhead() {
  for (; sent_ < requests_.size() && sent_ < window_; ++sent_) {
    connection_.Queue(requests_[sent_].message);
    requests_[sent_].message = {};
    ++queued_;
  }
}

// New requests are written before the phone has answered all the earlier ones, but not each with a call of its own.
void SyncConnection::Answered() {
  requests_.pop_front();
  --sent_;
  SendAhead();
  if (queued_ > window_ / 4) {
    connection_.WriteSome();
    queued_ = 0;
  }
}

Status SyncConnection::CheckNext(Kind kind) const {
  if (failed_) return Misuse("reading after a failure");
  if (in_file_) return Misuse("reading in the middle of a file that is sent");
  if (requests_.empty() || requests_.front().kind != kind) return Misuse("no request of this kind is next");
  return {};
}

Error SyncConnection::Failed(Error error) {
  if (error.code != ErrorCode::kTimedOut && error.code != ErrorCode::kCancelled) failed_ = true;
  return error;
}

// --- Answers

Error SyncConnection::TakeRefusal(const Limits& limits) {
  const size_t length = base::GetLe32(connection_.buffered().data() + 4);
  if (length > kLongestRefusal)
    return Failed(Unexpected("a short message after FAIL", connection_.buffered()));
  if (Status status = connection_.Buffer(kSyncHeader + length, "the whole message after FAIL", limits);
      !status.ok()) {
    return Failed(status.TakeError());
  }
  std::string message(connection_.buffered().substr(kSyncHeader, length));
  connection_.Consume(kSyncHeader + length);
  return Failed({ErrorCode::kRefused, std::move(message)});
}

Result<std::uint32_t> SyncConnection::AwaitHeader(std::string_view expected, const Limits& limits) {
  if (Status status = connection_.Buffer(kSyncHeader, expected, limits); !status.ok()) {
    return Failed(status.TakeError());
  }
  const std::uint32_t id = base::GetLe32(connection_.buffered().data());
  if (id == sync_id::kFail) return TakeRefusal(limits);
  return id;
}

Result<FileStatus> SyncConnection::ReadStat(const Limits& limits) {
  if (Status status = CheckNext(Kind::kStat); !status.ok()) return status.TakeError();
  constexpr std::string_view kExpected = "the status of a file";
  const Result<std::uint32_t> id = AwaitHeader(kExpected, limits);
  if (!id.ok()) return id.error();
  const bool second_form = requests_.front().second_form;
  const bool known =
      second_form ? *id == sync_id::kStatLink2 || *id == sync_id::kStatTarget2 : *id == sync_id::kStat1;
  if (!known) return Failed(Unexpected(kExpected, connection_.buffered()));
  const size_t size = second_form ? kStat2Size : kStat1Size;
  if (Status status = connection_.Buffer(size, kExpected, limits); !status.ok())
    return Failed(status.TakeError());
  const FileStatus status = ParseStat(second_form, connection_.buffered().data());
  connection_.Consume(size);
  Answered();
  return status;
}

Result<std::optional<DirectoryEntry>> SyncConnection::ReadEntry(const Limits& limits) {
  if (Status status = CheckNext(Kind::kList); !status.ok()) return status.TakeError();
  connection_.Consume(std::exchange(consumed_entry_, 0));
  constexpr std::string_view kExpected = "an entry or the end of a list";
  const Result<std::uint32_t> id = AwaitHeader(kExpected, limits);
  if (!id.ok()) return id.error();
  const bool second_form = requests_.front().second_form;
  if (*id != sync_id::kDone && *id != (second_form ? sync_id::kEntry2 : sync_id::kEntry1)) {
    return Failed(Unexpected(kExpected, connection_.buffered()));
  }
  const size_t size = second_form ? kEntry2Size : kEntry1Size;
  if (Status status = connection_.Buffer(size, kExpected, limits); !status.ok())
    return Failed(status.TakeError());
  if (*id == sync_id::kDone) {
    connection_.Consume(size);
    Answered();
    return std::optional<DirectoryEntry>();
  }
  const size_t length = base::GetLe32(connection_.buffered().data() + size - 4);
  if (length > kLongestSyncName)
    return Failed(Unexpected("a name of at most 1,024 bytes", connection_.buffered()));
  if (Status status = connection_.Buffer(size + length, kExpected, limits); !status.ok()) {
    return Failed(status.TakeError());
  }
  const std::string_view message = connection_.buffered().substr(0, size + length);
  DirectoryEntry entry = {message.substr(size), ParseStat(second_form, message.data())};
  consumed_entry_ = size + length;
  return std::optional(entry);
}

Status SyncConnection::ReadList(const ReceiveEntry& receive, const Limits& limits) {
  for (;;) {
    Result<std::optional<DirectoryEntry>> entry = ReadEntry(limits);
    if (!entry.ok()) return entry.TakeError();
    if (!*entry) return {};
    if (!receive(**entry)) return Failed({ErrorCode::kStopped, {}});
  }
}

Result<bool> SyncConnection::AwaitContent(const Limits& limits) {
  if (Status status = CheckNext(Kind::kContent); !status.ok()) return status.TakeError();
  while (content_left_ == 0) {
    constexpr std::string_view kExpected = "the data or the end of a file";
    const Result<std::uint32_t> id = AwaitHeader(kExpected, limits);
    if (!id.ok()) return id.error();
    const size_t length = base::GetLe32(connection_.buffered().data() + 4);
    if (*id == sync_id::kDone) {
      connection_.Consume(kSyncHeader);
      Answered();
      return false;
    }
    if (*id != sync_id::kData) return Failed(Unexpected(kExpected, connection_.buffered()));
    if (length > kLongestSyncData)
      return Failed(Unexpected("at most 64 KiB of data", connection_.buffered()));
    connection_.Consume(kSyncHeader);
    content_left_ = length;
  }
  return true;
}

Status SyncConnection::ReadContent(const ReceiveData& receive, const Limits& limits) {
  for (;;) {
    Result<bool> more = AwaitContent(limits);
    if (!more.ok()) return more.TakeError();
    if (!*more) return {};
    if (Status status = connection_.Buffer(1, "the rest of a file", limits); !status.ok()) {
      return Failed(status.TakeError());
    }
    const std::string_view data = connection_.buffered().substr(0, content_left_);
    const bool go_on = receive(data);
    connection_.Consume(data.size());
    content_left_ -= data.size();
    if (!go_on) return Failed({ErrorCode::kStopped, {}});
  }
}

Result<size_t> SyncConnection::ReadContent(std::span<char> buffer, const Limits& limits) {
  Result<bool> more = AwaitContent(limits);
  if (!more.ok()) return more.TakeError();
  if (!*more) return size_t{0};
  Result<size_t> count = connection_.Read(buffer.first(std::min(buffer.size(), content_left_)), limits);
  if (!count.ok()) return Failed(count.TakeError());
  if (*count == 0) return Failed(connection_.Broken("the rest of a file"));
  content_left_ -= *count;
  return count;
}

Result<FileStatus> SyncConnection::Stat(std::string_view path, Links links, const Limits& limits) {
  if (Status status = RequestStat(path, links); !status.ok()) return status.TakeError();
  return ReadStat(limits);
}

Status SyncConnection::List(std::string_view path, const ReceiveEntry& receive, const Limits& limits) {
  if (Status status = RequestList(path); !status.ok()) return status;
  return ReadList(receive, limits);
}

Status SyncConnection::Receive(std::string_view path, const ReceiveData& receive, const Limits& limits) {
  if (Status status = RequestContent(path); !status.ok()) return status;
  return ReadContent(receive, limits);
}

// --- Sending files

Status SyncConnection::BeginSend(std::string_view path, std::uint32_t mode, const Limits& limits) {
  for (const Pending& pending : requests_) {
    if (pending.kind != Kind::kSend) return Misuse("a file is sent before an earlier request is answered");
  }
  std::string name(path);
  if (!send_receive_v2_) name += "," + std::to_string(mode);
  std::string flags;
  if (send_receive_v2_) {
    flags = SyncHeader(sync_id::kSend2, mode);
    base::PutLe32(&flags, 0);  // without compression
  }
  const std::uint32_t id = send_receive_v2_ ? sync_id::kSend2 : sync_id::kSend1;
  const size_t sent_before = sent_;
  if (Status status = Request(Kind::kSend, send_receive_v2_, id, name, flags); !status.ok()) return status;
  if (sent_ == sent_before) {  // whatever the window: what follows belongs to this request
    connection_.Queue(requests_.back().message);
    requests_.back().message = {};
    ++sent_;
  }
  in_file_ = true;
  if (connection_.queued() < kGathered) return {};
  return AfterOutput(connection_.Flush(limits), limits);
}

Status SyncConnection::SendData(std::string_view data, const Limits& limits) {
  if (!in_file_ || failed_) return Misuse("data without a file");
  while (!data.empty()) {
    const std::string_view piece = data.substr(0, kLongestSyncData);
    data.remove_prefix(piece.size());
    connection_.Queue(SyncHeader(sync_id::kData, static_cast<std::uint32_t>(piece.size())));
    if (connection_.queued() + piece.size() < kGathered) {
      connection_.Queue(piece);
    } else if (Status status = AfterOutput(connection_.Send(piece, limits), limits); !status.ok()) {
      return status;
    }
  }
  return {};
}

Status SyncConnection::EndSend(std::uint32_t modified, const Limits& limits) {
  if (!in_file_ || failed_) return Misuse("the end of a file without a file");
  connection_.Queue(SyncHeader(sync_id::kDone, modified));
  in_file_ = false;
  if (connection_.queued() < kGathered) return {};
  return AfterOutput(connection_.Flush(limits), limits);
}

// Takes the answers that have come to files; waits for the message of a refusal alone.
Status SyncConnection::TakeAcknowledgements(const Limits& limits) {
  while (!requests_.empty() && requests_.front().kind == Kind::kSend &&
         connection_.buffered().size() >= kSyncHeader) {
    const Result<std::uint32_t> id = AwaitHeader("OKAY or FAIL to a file", limits);
    if (!id.ok()) return id.error();
    const bool too_early = in_file_ && requests_.size() == 1;
    if (*id != sync_id::kOkay || too_early) {
      return Failed(Unexpected("OKAY or FAIL to a file", connection_.buffered()));
    }
    connection_.Consume(kSyncHeader);
    Answered();
  }
  return {};
}

// A phone that refuses a file may take no more of it; its reason has then arrived, or is about to.
Status SyncConnection::AfterOutput(Status status, const Limits& limits) {
  if (status.ok()) {
    connection_.Poll();
    return TakeAcknowledgements(limits);
  }
  if (status.error().code != ErrorCode::kConnectionBroken) {
    failed_ = true;  // part of a message may be written, and nothing can follow it
    return status;
  }
  for (;;) {
    if (Status taken = TakeAcknowledgements(limits); !taken.ok()) return taken;
    Result<bool> more = connection_.Fill(limits);
    if (!more.ok()) return Failed(more.TakeError());
    if (!*more) return Failed(status.TakeError());
  }
}

Status SyncConnection::AwaitSends(size_t count, const Limits& limits) {
  if (failed_ || in_file_) return Misuse("the outcome of a file that is not ended");
  for (;;) {
    if (Status status = TakeAcknowledgements(limits); !status.ok()) return status;
    if (requests_.size() <= count || requests_.front().kind != Kind::kSend) return {};
    Result<bool> more = connection_.Fill(limits);
    if (!more.ok()) return Failed(more.TakeError());
    if (!*more) return Failed(connection_.Broken("OKAY or FAIL to a file"));
  }
}

bool SyncConnection::IsIdle() {
  return requests_.empty() && !in_file_ && !failed_ && connection_.queued() == 0 && !connection_.HasNews();
}

void SyncConnection::Quit() {
  if (IsIdle()) {
    connection_.Queue(SyncHeader(sync_id::kQuit, 0));
    connection_.WriteSome();
  }
  connection_.Close();
}

}  // namespace darokleim::adb

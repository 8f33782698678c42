// Any bytes as the answers to requests for status, lists and contents, and to files that are sent. The first byte of the
// input chooses the form of the messages, the second what is asked for.
#include <algorithm>
#include <string>
#include <string_view>

#include "adb/sync_connection.h"
#include "tests/fuzz/adb_reader.h"

using namespace darokleim::adb;
using namespace darokleim::adb_fuzz;
using darokleim::sdk::Require;

namespace {

constexpr int kRequests = 6;

SyncConnection Start(ServerOfBytes* server, bool second_form) {
  const FeatureSet features(second_form ? "stat_v2,ls_v2,sendrecv_v2" : "");
  auto sync = SyncConnection::Start(server->Take(), features, Soon());
  Require(sync.ok());
  return *std::move(sync);
}

Status ReadContentInPieces(SyncConnection* sync) {
  std::string buffer(7, '\0');
  for (;;) {
    Result<size_t> count = sync->ReadContent(buffer, Soon());
    if (!count.ok()) return count.TakeError();
    if (*count == 0) return {};
    Require(*count <= buffer.size());
  }
}

Status Read(SyncConnection* sync, int kind) {
  switch (kind) {
    case 0: {
      Result<FileStatus> status = sync->ReadStat(Soon());
      return status.ok() ? Status() : status.TakeError();
    }
    case 1:
      return sync->ReadList(
          [](const DirectoryEntry& entry) {
            Require(entry.name.size() <= kLongestSyncName);
            const bool is_of_an_entry = !entry.name.empty() &&
                                        entry.name.find('/') == std::string_view::npos &&
                                        entry.name.find('\0') == std::string_view::npos;
            Require(IsEntryName(entry.name) == is_of_an_entry);
            return true;
          },
          Soon());
    case 2:
      return sync->ReadContent([](std::string_view data) { return Require(!data.empty()), true; }, Soon());
    default:
      return ReadContentInPieces(sync);
  }
}

void RequireThatItFailed(SyncConnection* sync, const Error& error) {
  RequireAnErrorOfTheInput(error);
  Require(!sync->IsIdle() && sync->unanswered() > 0);
}

// Several requests, whose kinds the bits of `kinds` choose.
void ReadAnswers(const std::string& bytes, bool second_form, unsigned kinds) {
  ServerOfBytes server("OKAY" + bytes);
  SyncConnection sync = Start(&server, second_form);
  for (int i = 0; i < kRequests; ++i) {
    const unsigned kind = (kinds >> i) & 3;
    const Status status = kind == 0   ? sync.RequestStat("/f", SyncConnection::Links::kThemselves)
                          : kind == 1 ? sync.RequestList("/f")
                                      : sync.RequestContent("/f");
    Require(status.ok());
  }
  for (int i = 0; i < kRequests; ++i) {
    const Status status = Read(&sync, static_cast<int>((kinds >> i) & 3));
    if (!status.ok()) return RequireThatItFailed(&sync, status.error());
  }
  Require(sync.unanswered() == 0);
}

void SendFiles(const std::string& bytes, bool second_form) {
  ServerOfBytes server("OKAY" + bytes);
  SyncConnection sync = Start(&server, second_form);
  const std::string data(20'000, 'x');  // the second file is written while the first may be answered
  for (int i = 0; i < 3; ++i) {
    Status status = sync.BeginSend("/f", 0100644, Soon());
    if (status.ok()) status = sync.SendData(data, Soon());
    if (status.ok()) status = sync.EndSend(0, Soon());
    if (!status.ok()) return RequireThatItFailed(&sync, status.error());
  }
  const Status status = sync.AwaitSends(0, Soon());
  if (!status.ok()) return RequireThatItFailed(&sync, status.error());
  Require(sync.unanswered() == 0 && bytes.size() >= 3 * kSyncHeader);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const std::string bytes = darokleim::sdk::Text(data + 2, std::min(size - 2, kLongestInput - 4));
  const bool second_form = (data[0] & 1) != 0;
  ReadAnswers(bytes, second_form, data[1]);
  SendFiles(bytes, second_form);
  return 0;
}

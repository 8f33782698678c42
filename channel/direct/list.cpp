// The form ls: the entries of a folder.
#include <cinttypes>
#include <cstdio>

#include "channel/direct/sync_call.h"

namespace darokleim::channel::direct {
namespace {

bool PrintEntry(const Call& call, const adb::DirectoryEntry& entry) {
  char numbers[64];
  const int length =
      snprintf(numbers, sizeof numbers, "%08" PRIx32 " %08" PRIx64 " %08" PRIx64 " ", entry.status.mode,
               entry.status.size, static_cast<uint64_t>(entry.status.modified));
  return call.Print({numbers, static_cast<size_t>(length)}) && call.Print(entry.name) && call.Print("\n");
}

SyncAttempt List(const Call& call, adb::SyncConnection* sync) {
  const std::string& path = call.form.operands[0];
  bool any = false, all_are_names = true;
  const auto print = [&](const adb::DirectoryEntry& entry) {
    any = true;
    all_are_names = adb::IsEntryName(entry.name);
    return all_are_names && PrintEntry(call, entry);
  };
  const adb::Status listed = sync->List(path, print, call.limits);
  if (listed.ok()) return Ending{Ending::kExited, 0};
  if (!all_are_names) return Ending{Ending::kBroken};
  switch (listed.error().code) {
    case adb::ErrorCode::kTooLong:
      return call.Finish(PathTooLong(path.size()), 1);
    case adb::ErrorCode::kStopped:
      return Ending{Ending::kOutputRefused};
    case adb::ErrorCode::kRefused:  // adb says nothing about it
      return Ending{Ending::kExited, 1};
    default:
      return any ? EndWithin(listed.error()) : EndOfFirstRequest(listed.error());
  }
}

}  // namespace

Attempt RunList(const Call& call) {
  return RunOnSyncConnection(call, [&](adb::SyncConnection* sync) { return List(call, sync); });
}

}  // namespace darokleim::channel::direct

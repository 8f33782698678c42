// Commands on the files of a phone: what their forms share.
#ifndef DAROKLEIM_CHANNEL_DIRECT_SYNC_CALL_H
#define DAROKLEIM_CHANNEL_DIRECT_SYNC_CALL_H

#include <functional>
#include <optional>
#include <string>

#include "adb/sync_connection.h"
#include "channel/direct/call.h"

namespace darokleim::channel::direct {

// What a command has come to on a connection. None: the connection ended before it answered anything, and nothing was
// asked for that changes anything.
using SyncAttempt = std::optional<Attempt>;

// Runs the command on a kept connection to the phone; where there is none, or it is at its end, on a new one.
Attempt RunOnSyncConnection(const Call& call, const std::function<SyncAttempt(adb::SyncConnection*)>& run);

// The status of a file, of what a link leads to. Old phones report that of the link alone; of its target they report whether it
// is a folder.
adb::Result<adb::FileStatus> StatOfTarget(adb::SyncConnection* sync, const std::string& path,
                                          const adb::Limits& limits);

// Whether there is such a file, as adb understands it.
bool IsThere(const adb::FileStatus& status);

// What adb prints where it does not send a path because of its length.
std::string PathTooLong(size_t length);

inline constexpr const char* kSyncError = "adb: error: ";

// The end of a transfer that failed: adb's words for it, and what it reports of the bytes that went before, if any did.
Ending FailTransfer(const Call& call, const std::string& text, const std::string& report = "");

// What an error of the first request comes to.
SyncAttempt EndOfFirstRequest(const adb::Error& error);

}  // namespace darokleim::channel::direct

#endif  // DAROKLEIM_CHANNEL_DIRECT_SYNC_CALL_H

// Connections to the file services of phones, kept for a short time after their use: a tree is listed folder after folder,
// and each connection that needs not be made saves most of the time of a small request.
#ifndef DAROKLEIM_CHANNEL_DIRECT_KEPT_CONNECTIONS_H
#define DAROKLEIM_CHANNEL_DIRECT_KEPT_CONNECTIONS_H

#include <optional>
#include <string>

#include "adb/sync_connection.h"

namespace darokleim::channel::direct {

// A connection is kept for two seconds, and at most eight are. A thread closes them in time; it ends when none is left. All
// are closed when the library is unloaded. A fork of the process has none of them. For any thread.

// key: names the server and the phone. None when none is kept that is still usable.
std::optional<adb::SyncConnection> TakeKeptConnection(const std::string& key);

// Keeps the connection if it is idle and there is memory for it; closes it otherwise.
void KeepConnection(const std::string& key, adb::SyncConnection connection);

}  // namespace darokleim::channel::direct

#endif  // DAROKLEIM_CHANNEL_DIRECT_KEPT_CONNECTIONS_H

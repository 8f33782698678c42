// Starting adb as a child.
#ifndef DAROKLEIM_CHANNEL_PROCESS_START_ADB_H
#define DAROKLEIM_CHANNEL_PROCESS_START_ADB_H

#include <string>
#include <vector>

#include "base/spawn.h"
#include "channel/status.h"

namespace darokleim::channel {

// Returns kDelivered, kCannotStart or kSystemRefused; the log has the reason.
Status StartAdb(const std::string& adb_path, const std::vector<std::string>& words, base::Spawned* spawned);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_START_ADB_H

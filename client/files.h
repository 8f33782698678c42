// One file of the phone, looked at.
#ifndef DAROKLEIM_CLIENT_FILES_H
#define DAROKLEIM_CLIENT_FILES_H

#include <optional>
#include <string>

#include "client/sync.h"

namespace darokleim::client {

// On phones of both generations; with DK_FOLLOW what a link leads to.
Result<adb::FileStatus> StatOf(dk_device* device, Sync* sync, const std::string& path, dk_follow follow,
                               std::string_view what, const Limits& limits);

// Where a link, or a path with links in it, leads in the end, by the phone's `readlink -f`; nothing for nowhere.
Result<std::optional<std::string>> RealPath(dk_device* device, const std::string& path, std::string_view what,
                                            const Limits& limits);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_FILES_H

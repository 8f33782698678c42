// Paths on the phone, as bytes.
#ifndef DAROKLEIM_CLIENT_PHONE_PATH_H
#define DAROKLEIM_CLIENT_PHONE_PATH_H

#include <optional>
#include <string>
#include <string_view>

#include "client/error.h"

namespace darokleim::client {

// The longest path that Linux takes, without its zero byte.
inline constexpr std::size_t kLongestPath = 4095;

// The caller's path without slashes at its end, but for "/" itself. DK_INVALID_ARGUMENT for null, an empty or a relative one,
// DK_NAME_TOO_LONG beyond kLongestPath.
Result<std::string> ReadPath(const char* path);

// "/sdcard" of "/sdcard/DCIM"; "/" of "/sdcard".
std::string ParentOf(const std::string& path);
// "DCIM" of "/sdcard/DCIM"; empty for "/".
std::string_view NameOf(std::string_view path);
std::string Joined(const std::string& folder, std::string_view name);

// A name from the phone that leads nowhere else: not empty, not "." or "..", without a slash and a zero byte.
bool IsSafeName(std::string_view name);
// DK_UNSAFE_NAME for an entry that the phone lists in `folder` under another name.
Error UnsafeEntry(const std::string& folder, std::string_view name);

// Whether removing it would remove the phone's system or a whole storage volume: "/", "/sdcard", "/storage/1234-5678",
// "/storage/emulated/0" and the like, and any path with ".." in it.
bool IsTooMuchToRemove(std::string_view path);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_PHONE_PATH_H

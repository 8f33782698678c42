#ifndef DAROKLEIM_SRC_FILESYSTEM_ADB_LS_LISTING_H
#define DAROKLEIM_SRC_FILESYSTEM_ADB_LS_LISTING_H

// adb ls: a directory listing by the device's daemon, without its shell. Nothing needs quoting.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "src/core/adb_run.h"
#include "src/filesystem/file_info.h"

// A record for each entry of the directory dir, directories included, in order: mode, size, time (as seconds
// and as text of the host's time zone) and path. "." and ".." give none; neither does any other name of two
// characters with a dot, such as ".a": callers rely on it. Carriage returns stay in names.
// Throws std::length_error for a negative len.
std::vector<FileInfo> DecodeADBLSOut(const std::string& dir, const char* out, int len);

// Looks at the directory bit alone: block devices and sockets, whose types hold that bit too, count.
bool CheckIsDir(unsigned int mode);

namespace darokleim::sdk {

AdbRun RunAdbLs(const char* serial, std::string_view directory, const bool* cancel);

// A line of the listing: mode, size and time in eight hexadecimal digits each, then the name.
struct AdbLsLine {
  std::uint32_t mode;
  std::uint64_t size;
  std::uint64_t time;
  std::string_view name;  // a piece of the line
};

// Three numbers of eight digits, each followed by a space, and a name of one character.
inline constexpr std::size_t kShortestAdbLsLine = 3 * (8 + 1) + 1;

// Whether the line is too short, or one of "." or ".." or of a name that looks like them by its length.
bool IsSkippedAdbLsLine(std::string_view line);

// Reads each number as strtoul does, from where the one before ended, whatever the line holds: white space, a sign and
// 0x may come first, a missing number is 0, a number that is too large is the largest (the mode's upper half is then
// dropped). One character of any kind separates the last number from the name.
AdbLsLine ReadAdbLsLine(std::string_view line);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_ADB_LS_LISTING_H

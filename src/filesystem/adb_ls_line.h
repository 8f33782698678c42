// The lines of adb ls: mode, size and time in eight hexadecimal digits each, then the name.
#ifndef DAROKLEIM_SRC_FILESYSTEM_ADB_LS_LINE_H
#define DAROKLEIM_SRC_FILESYSTEM_ADB_LS_LINE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace darokleim::sdk {

struct AdbLsLine {
  std::uint32_t mode;
  std::uint64_t size;
  std::uint64_t time;
  std::string_view name;  // a piece of the line
};

// Three numbers of eight digits with a blank behind each, and a name of one character.
inline constexpr std::size_t kShortestAdbLsLine = 3 * (8 + 1) + 1;

// Whether the line is too short, or one of "." or ".." or of a name that looks like them by its length.
bool IsSkippedAdbLsLine(std::string_view line);

// Reads each number as strtoul does, whatever stands there, from where the one before ended: blanks, a sign and
// 0x may come first, none at all is 0, too large is the largest (the mode's upper half is then dropped). One
// character of any kind parts the last from the name.
AdbLsLine ReadAdbLsLine(std::string_view line);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_ADB_LS_LINE_H

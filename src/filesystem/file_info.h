// One listed file or directory of a device.
#ifndef DAROKLEIM_SRC_FILESYSTEM_FILE_INFO_H
#define DAROKLEIM_SRC_FILESYSTEM_FILE_INFO_H

#include <cstdint>
#include <string>

// Members that a listing does not provide are 0 or empty.
struct FileInfo {
  std::uint64_t size = 0;  // bytes
  std::uint32_t mode = 0;  // type and permissions, the device's st_mode
  std::string file;        // absolute path on the device: directory, "/" and name; bytes, not decoded
  std::string time;        // of modification, as text
  std::uint64_t utc_timestamp = 0;  // of modification, seconds since 1970-01-01 00:00 UTC
};

#endif  // DAROKLEIM_SRC_FILESYSTEM_FILE_INFO_H

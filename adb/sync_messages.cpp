#include "adb/sync_messages.h"

#include "base/little_endian.h"

namespace darokleim::adb {

using base::GetLe32;
using base::GetLe64;

bool IsEntryName(std::string_view name) {
  return !name.empty() && name.find('/') == std::string_view::npos &&
         name.find('\0') == std::string_view::npos;
}

FileStatus ParseStat(bool second_form, const char* message) {
  FileStatus status;
  status.second_form = second_form;
  if (!second_form) {
    status.mode = GetLe32(message + 4);
    status.size = GetLe32(message + 8);
    status.modified = GetLe32(message + 12);
    return status;
  }
  status.error = GetLe32(message + 4);
  status.device = GetLe64(message + 8);
  status.inode = GetLe64(message + 16);
  status.mode = GetLe32(message + 24);
  status.links = GetLe32(message + 28);
  status.user = GetLe32(message + 32);
  status.group = GetLe32(message + 36);
  status.size = GetLe64(message + 40);
  status.accessed = static_cast<std::int64_t>(GetLe64(message + 48));
  status.modified = static_cast<std::int64_t>(GetLe64(message + 56));
  status.changed = static_cast<std::int64_t>(GetLe64(message + 64));
  return status;
}

std::string SyncHeader(std::uint32_t id, std::uint32_t value) {
  std::string message;
  base::PutLe32(&message, id);
  base::PutLe32(&message, value);
  return message;
}

std::string SyncRequest(std::uint32_t id, std::string_view path) {
  return SyncHeader(id, static_cast<std::uint32_t>(path.size())).append(path);
}

}  // namespace darokleim::adb

#include "client/phone_path.h"

#include <vector>

#include "adb/sync_messages.h"

namespace darokleim::client {
namespace {

std::vector<std::string_view> Parts(std::string_view path) {
  std::vector<std::string_view> parts;
  while (!path.empty()) {
    const std::string_view part = path.substr(0, path.find('/'));
    path.remove_prefix(part.size() < path.size() ? part.size() + 1 : part.size());
    if (!part.empty() && part != ".") parts.push_back(part);
  }
  return parts;
}

}  // namespace

Result<std::string> ReadPath(const char* path) {
  if (path == nullptr || *path == '\0') return InvalidArgument("the path is empty");
  std::string read = path;
  if (read.front() != '/') return InvalidArgument("the phone's path is not absolute: " + Shown(read));
  while (read.size() > 1 && read.back() == '/') read.pop_back();
  if (read.size() > kLongestPath) {
    Error error = Failed(DK_NAME_TOO_LONG, "use a path", "it has more than 4,095 bytes");
    error.path = std::move(read);
    return error;
  }
  return read;
}

std::string ParentOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string_view NameOf(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}

std::string Joined(const std::string& folder, std::string_view name) {
  std::string path = folder;
  if (path.empty() || path.back() != '/') path += '/';
  return path.append(name);
}

bool IsSafeName(std::string_view name) {
  return adb::IsEntryName(name) && name != "." && name != "..";
}

Error UnsafeEntry(const std::string& folder, std::string_view name) {
  const std::string path = Joined(folder, name);
  Error error =
      Failed(DK_UNSAFE_NAME, "use " + Shown(path), "the phone lists it by a name that no folder can hold");
  error.path = path;
  return error;
}

bool IsTooMuchToRemove(std::string_view path) {
  const auto parts = Parts(path);
  for (const std::string_view part : parts) {
    if (part == "..") return true;
  }
  if (parts.size() < 2) return true;
  const bool in_storage = parts[0] == "storage" || (parts[0] == "mnt" && parts[1] != "sdcard");
  if (in_storage && parts.size() == 2) return true;
  return (parts[0] == "storage" && parts[1] == "emulated" && parts.size() == 3) ||
         (parts[0] == "data" && parts[1] == "media" && parts.size() <= 3);
}

}  // namespace darokleim::client

#ifndef DAROKLEIM_SRC_FILESYSTEM_DEVICE_PATH_H
#define DAROKLEIM_SRC_FILESYSTEM_DEVICE_PATH_H

// Paths on the device.

#include <optional>
#include <string>
#include <string_view>

namespace darokleim::sdk {

// Where adb's shell may write on every device. Files are stored here between two steps of a function, under their
// names on the host: two files with the same name share a place.
inline constexpr char kDeviceTempDir[] = "/data/local/tmp/";

// A path taken apart. Both pieces are views into the path given.
struct DevicePath {
  std::string_view parent;  // without its slash; empty for an entry of the root
  std::string_view name;
};

// Nothing for a path without a slash.
inline std::optional<DevicePath> SplitAtLastSlash(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string_view::npos) return std::nullopt;
  return DevicePath{path.substr(0, slash), path.substr(slash + 1)};
}

// directory, "/" and name, whether or not directory ends in a slash already; allocated at its exact length.
inline std::string JoinPath(std::string_view directory, std::string_view name) {
  std::string path(directory.size() + 1 + name.size(), '/');
  directory.copy(path.data(), directory.size());
  name.copy(path.data() + directory.size() + 1, name.size());
  return path;
}

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_DEVICE_PATH_H

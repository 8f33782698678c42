// A path on the device, taken apart. Both pieces are views into the path given.
#ifndef DAROKLEIM_SRC_FILESYSTEM_DEVICE_PATH_H
#define DAROKLEIM_SRC_FILESYSTEM_DEVICE_PATH_H

#include <optional>
#include <string_view>

namespace darokleim::sdk {

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

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_DEVICE_PATH_H

#include "src/filesystem/storage_output.h"

#include <optional>

#include "src/core/string_helper.h"
#include "src/core/text.h"

namespace darokleim::sdk {
namespace {

constexpr std::string_view kStorage = "/storage/";
constexpr std::string_view kInternalName = "emulated";
constexpr std::string_view kInternalPath = "/storage/emulated/0";

// The name is what follows the last space; it may be empty.
std::optional<std::string> PathNamedLast(std::string_view line) {
  const std::size_t space = line.rfind(' ');
  if (space == std::string_view::npos) return std::nullopt;
  return std::string(kStorage).append(line.substr(space + 1));
}

// Recognised by the groups that own shared storage.
std::optional<std::string> SharedVolume(std::string_view line) {
  if (!Contains(line, "sdcard_rw") && !Contains(line, "everybody") && !Contains(line, "media_rw")) {
    return std::nullopt;
  }
  if (Contains(line, kInternalName)) return std::string(kInternalPath);
  return PathNamedLast(line);
}

// For phones that give shared storage other groups.
std::optional<std::string> OlderVolume(std::string_view line) {
  if (Contains(line, "sdcard0")) return std::string(kStorage).append("sdcard0");
  if (Contains(line, "sdcard_r")) return PathNamedLast(line);
  return std::nullopt;
}

template <typename VolumeOf>
std::vector<std::string> Collect(std::string_view listing, VolumeOf volume_of) {
  std::vector<std::string> paths;
  ForEachPiece(listing, "\n", [&](std::string_view line) {
    if (auto path = volume_of(line)) paths.push_back(*std::move(path));
    return true;
  });
  return paths;
}

}  // namespace

std::optional<unsigned long long> FreeBytes(std::string_view rows) {
  constexpr int kAvailableColumn = 3;
  std::optional<unsigned long long> bytes;
  int column = 0;
  ForEachPiece(rows, " ", [&](std::string_view piece) {
    if (column++ < kAvailableColumn) return true;
    bytes = StringHelper::StorageToNumber(std::string(piece));
    return false;
  });
  return bytes;
}

std::vector<std::string> VolumePaths(std::string_view listing) {
  std::vector<std::string> paths = Collect(listing, SharedVolume);
  return paths.empty() ? Collect(listing, OlderVolume) : paths;
}

std::string CardPath(std::string_view listing) {
  std::optional<std::string> path;
  ForEachPiece(listing, "\n", [&](std::string_view line) {
    if (Contains(line, "sdcard_r") && !Contains(line, kInternalName)) path = PathNamedLast(line);
    return !path;
  });
  return path.value_or("");
}

}  // namespace darokleim::sdk

#include "tools/cli/host/resource_directory.h"

#include <errno.h>
#include <stdio.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "tools/cli/errors.h"
#include "tools/cli/host/host_directories.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

constexpr char kNoBusybox[] = "/dev/null";

std::string DirectoryName(const fs::path& adb, const fs::path& busybox) {
  std::string both = adb.native();
  both.append(1, '\0').append(busybox.native());
  char name[32];
  std::snprintf(name, sizeof name, "resources-%016llx", static_cast<unsigned long long>(StableHash(both)));
  return name;
}

// The link appears whole or not at all, whoever makes it at the same time.
void PlaceLink(const fs::path& link, const fs::path& target) {
  std::error_code error;
  if (fs::read_symlink(link, error) == target && !error) return;
  const fs::path unfinished = link.native() + "." + std::to_string(getpid());
  unlink(unfinished.c_str());
  if (symlink(target.c_str(), unfinished.c_str()) != 0 || rename(unfinished.c_str(), link.c_str()) != 0) {
    const std::string why = SystemErrorText(errno);
    unlink(unfinished.c_str());
    throw ToolError("cannot create the link " + link.native() + ": " + why);
  }
}

fs::path MakeBelow(const fs::path& parent, const fs::path& adb, const fs::path& busybox) {
  MakePrivateDirectory(parent);
  fs::path directory = parent / DirectoryName(adb, busybox);
  MakePrivateDirectory(directory);
  PlaceLink(directory / "adb", adb);
  PlaceLink(directory / "busybox", busybox);
  return directory;
}

}  // namespace

std::string MakeResourceDirectory(const HostPrograms& programs) {
  const fs::path busybox = programs.busybox.value_or(kNoBusybox);
  if (const auto cache = CacheDirectory()) {
    try {
      return MakeBelow(*cache, programs.adb, busybox).native();
    } catch (const ToolError&) {
      // A home that cannot be written to, as that of many service users.
    }
  }
  return MakeBelow(TemporaryUserDirectory(), programs.adb, busybox).native();
}

}  // namespace darokleim::cli

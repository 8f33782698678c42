#include "tools/cli/commands/apps/package.h"

#include <darokleim.h>
#include <sys/stat.h>

#include <cerrno>

#include "tools/cli/errors.h"

namespace darokleim::cli {

bool IsInstalled(const Device& device, const std::string& package) {
  bool installed = false;
  device.Check(AdbCheckAppInstalled(device.serial(), package.c_str(), &installed, device.cancel()),
               "ask whether " + package + " is installed");
  return installed;
}

void RequireInstalled(const Device& device, const std::string& package) {
  if (!IsInstalled(device, package)) {
    throw ToolError(package + " is not installed. See `darokleim app list`.");
  }
}

void CheckApkFile(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    throw ToolError("cannot install " + path + ": " + SystemErrorText(errno) + ".");
  }
  if (!S_ISREG(status.st_mode)) throw ToolError("cannot install " + path + ": it is not a regular file.");
}

std::string FileName(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

}  // namespace darokleim::cli

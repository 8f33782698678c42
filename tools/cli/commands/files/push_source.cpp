#include "tools/cli/commands/files/push_source.h"

#include <darokleim.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/cli/device/argument_text.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/host_file.h"

namespace darokleim::cli {

PushSource FindPushSource(const std::string& named) {
  const std::string action = "cannot push " + named + ": ";
  PushSource source{AbsolutePath(named), false, 0, 0};
  struct stat facts {};
  if (named.empty() || stat(source.path.c_str(), &facts) != 0) {
    throw ToolError(action + "no such file or folder on this computer.");
  }
  CheckCanBeCarried(source.path.native());
  if (!S_ISREG(facts.st_mode) && !S_ISDIR(facts.st_mode)) {
    throw ToolError(action + "it is neither a file nor a folder.");
  }
  if (access(source.path.c_str(), R_OK) != 0) throw ToolError(action + "it cannot be read.");
  source.is_folder = S_ISDIR(facts.st_mode);
  source.size = static_cast<std::uint64_t>(facts.st_size);
  source.modified = static_cast<std::uint64_t>(facts.st_mtime);
  return source;
}

int RunPush(const Device& device, const PushSource& source, const DevicePath& target) {
  return AdbPushFile(device.serial(), source.path.c_str(), target.c_str(), device.cancel());
}

}  // namespace darokleim::cli

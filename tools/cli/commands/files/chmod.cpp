// darokleim chmod
#include <darokleim.h>

#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/argument_text.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim chmod 644 /sdcard/a.txt
  darokleim chmod a+x /data/local/tmp/busybox "/data/local/tmp/my script"

On the shared storage (/sdcard) modes are fixed: the device accepts the change and does nothing. Phones before Android 7
do not report that they refused one.)";

// It goes into the device's command as it is.
struct FileMode {
  static constexpr ValueKind kKind = ValueKind::kText;
  static FileMode Parse(const std::string& word) {
    if (word.empty() || word.front() == '-' ||
        word.find_first_not_of("01234567ugoarwxXst+-=,") != std::string::npos) {
      throw UsageError("\"" + word + "\" is not a valid mode, for example 644, a+x or u=rw,go=r.");
    }
    return {word};
  }
  std::string text;
};

struct Options {
  FileMode mode;
  std::vector<DevicePath> paths;
};

void Describe(Command& command, Options& options) {
  command.Positional("MODE", options.mode, "As the device's chmod reads it: 644, a+x, u=rw,go=r").Required();
  command.Positional("PATH", options.paths, "Files or folders on the device").Required();
}

void Run(Tool& tool, const Options& options) {
  const Device& device = tool.device();
  for (const auto& path : options.paths) {
    const std::string action = "change the mode of " + path.text();
    RequireEntry(device, path, action);
    device.Check(AdbChmodFile(device.serial(), ForBarePlace(path.text()).c_str(), options.mode.text.c_str(),
                              device.cancel()),
                 action);
  }
}

}  // namespace

void AddChmodCommand(Command& root) {
  AddCommand<Options>(root, {"chmod", "Change the mode of files on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

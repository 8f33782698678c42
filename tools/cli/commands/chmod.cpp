// darokleim chmod
#include <darokleim.h>

#include <string>
#include <vector>

#include "tools/cli/argument_text.h"
#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device_entry.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim chmod 644 /sdcard/a.txt
  darokleim chmod a+x /data/local/tmp/busybox "/data/local/tmp/my script"

The shared storage (/sdcard) has modes of its own: there the device accepts the change and does nothing. Phones
before Android 7 do not tell that they refused one.)";

struct Options {
  std::string mode;
  std::vector<std::string> paths;
};

void Describe(CLI::App& command, Options& options) {
  command.add_option("MODE", options.mode, "As the device's chmod reads it: 644, a+x, u=rw,go=r")->required();
  command.add_option("PATH", options.paths, "Files or folders on the device")->required();
}

// It goes into the device's command as it is.
void CheckMode(const std::string& mode) {
  if (mode.empty() || mode.front() == '-' ||
      mode.find_first_not_of("01234567ugoarwxXst+-=,") != std::string::npos) {
    throw ToolError("\"" + mode + "\" is no mode. Modes read 644, a+x or u=rw,go=r.");
  }
}

void Run(Tool& tool, const Options& options) {
  CheckMode(options.mode);
  const Device& device = tool.device();
  for (const auto& text : options.paths) {
    const DevicePath path(text);
    const std::string action = "change the mode of " + path.text();
    RequireEntry(device, path, action);
    device.Check(AdbChmodFile(device.serial(), ForBarePlace(path.text()).c_str(), options.mode.c_str(),
                              device.cancel()),
                 action);
  }
}

}  // namespace

void AddChmodCommand(CLI::App& app, Tool& tool) {
  AddCommand<Options>(app, tool, {"chmod", "Change the mode of files on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

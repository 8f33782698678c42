// darokleim rm
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/device/file_changes.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim rm /sdcard/a.txt "/sdcard/my photo.jpg"
  darokleim rm -f /sdcard/perhaps.txt

Deletes files, not folders. Nothing is deleted if one of the paths is not a file.)";

struct Options {
  bool force = false;
  std::vector<DevicePath> paths;
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.paths, "Files to delete on the device").Required();
  command.Flag("-f,--force", options.force, "Ignore paths that do not exist");
}

std::vector<DevicePath> FilesToDelete(const Device& device, const Options& options) {
  std::vector<DevicePath> files;
  for (const auto& path : options.paths) {
    const std::string action = "delete " + path.text();
    if (options.force && !EntryExists(device, path)) continue;
    if (RequireEntry(device, path, action).is_folder) {
      throw ToolError("cannot " + action + ": it is a folder, and the library deletes files only.");
    }
    files.push_back(path);
  }
  return files;
}

void Run(Tool& tool, const Options& options) {
  for (const auto& path : FilesToDelete(tool.device(), options)) RemoveFile(tool.device(), path);
}

}  // namespace

void AddRmCommand(Command& root) {
  AddCommand<Options>(root, {"rm", "Delete files on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

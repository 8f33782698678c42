// darokleim rm
#include <string>
#include <vector>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device_entry.h"
#include "tools/cli/errors.h"
#include "tools/cli/file_changes.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim rm /sdcard/a.txt "/sdcard/my photo.jpg"
  darokleim rm -f /sdcard/perhaps.txt

Files only: the library deletes no folders. Nothing is deleted when one of the paths is not a file.)";

struct Options {
  bool force = false;
  std::vector<std::string> paths;
};

void Describe(CLI::App& command, Options& options) {
  command.add_option("PATH", options.paths, "Files to delete on the device")->required();
  command.add_flag("-f,--force", options.force, "Pass over those that do not exist");
}

std::vector<DevicePath> FilesToDelete(const Device& device, const Options& options) {
  std::vector<DevicePath> files;
  for (const auto& text : options.paths) {
    const DevicePath path(text);
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

void AddRmCommand(CLI::App& app, Tool& tool) {
  AddCommand<Options>(app, tool, {"rm", "Delete files on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

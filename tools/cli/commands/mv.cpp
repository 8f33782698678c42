// darokleim mv
#include <string>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device_entry.h"
#include "tools/cli/errors.h"
#include "tools/cli/file_changes.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim mv /sdcard/a.txt /sdcard/b.txt       renames
  darokleim mv "/sdcard/my folder" /sdcard/Music   moves into the folder Music, if there is one

A file that stands at the new path is replaced.)";

struct Options {
  std::string source, destination;
};

void Describe(CLI::App& command, Options& options) {
  command.add_option("SOURCE", options.source, "File or folder on the device")->required();
  command.add_option("DESTINATION", options.destination, "Its new path, or a folder to move it into")
      ->required();
}

void Run(Tool& tool, const Options& options) {
  const DevicePath source(options.source);
  const std::string action = "move " + source.text();
  RequireEntry(tool.device(), source, action);
  const auto target = TargetFor(tool.device(), DevicePath(options.destination), source.Name());
  if (target.text() == source.text()) throw ToolError("cannot " + action + ": it is there already.");
  const auto replaced = FindEntry(tool.device(), target);
  if (replaced && replaced->is_folder) {
    throw ToolError("cannot " + action + ": a folder stands at " + target.text() + ".");
  }
  Rename(tool.device(), source, target);
}

}  // namespace

void AddMvCommand(CLI::App& app, Tool& tool) {
  AddCommand<Options>(app, tool, {"mv", "Move or rename a file or folder on the device", kFooter}, Describe,
                      Run);
}

}  // namespace darokleim::cli

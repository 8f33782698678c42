// darokleim mv
#include <string>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/device/file_changes.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim mv /sdcard/a.txt /sdcard/b.txt       renames
  darokleim mv "/sdcard/my folder" /sdcard/Music   moves into the folder Music, if there is one

An existing file at the new path is replaced.)";

struct Options {
  DevicePath source, destination;
};

void Describe(Command& command, Options& options) {
  command.Positional("SOURCE", options.source, "File or folder on the device").Required();
  command.Positional("DESTINATION", options.destination, "Its new path, or a folder to move it into")
      .Required();
}

void Run(Tool& tool, const Options& options) {
  const DevicePath& source = options.source;
  const std::string action = "move " + source.text();
  RequireEntry(tool.device(), source, action);
  const auto target = TargetFor(tool.device(), options.destination, source.Name());
  if (target.text() == source.text()) throw ToolError("cannot " + action + ": it is there already.");
  const auto replaced = FindEntry(tool.device(), target);
  if (replaced && replaced->is_folder) {
    throw ToolError("cannot " + action + ": " + target.text() + " is a folder.");
  }
  Rename(tool.device(), source, target);
}

}  // namespace

void AddMvCommand(Command& root) {
  AddCommand<Options>(root, {"mv", "Move or rename a file or folder on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

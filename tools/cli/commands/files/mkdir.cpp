// darokleim mkdir
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/file_changes.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim mkdir /sdcard/Music/new
  darokleim mkdir "/sdcard/a b/c" /sdcard/d

Missing parent folders are made as well. A folder that exists is not an error.)";

struct Options {
  std::vector<DevicePath> paths;
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.paths, "Folders to make on the device").Required();
}

void Run(Tool& tool, const Options& options) {
  for (const auto& path : options.paths) MakeFolder(tool.device(), path);
}

}  // namespace

void AddMkdirCommand(Command& root) {
  AddCommand<Options>(root, {"mkdir", "Make folders on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

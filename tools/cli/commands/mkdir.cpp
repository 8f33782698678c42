// darokleim mkdir
#include <string>
#include <vector>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/file_changes.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim mkdir /sdcard/Music/new
  darokleim mkdir "/sdcard/a b/c" /sdcard/d

Folders above it are made as well. One that exists is fine.)";

struct Options {
  std::vector<std::string> paths;
};

void Describe(CLI::App& command, Options& options) {
  command.add_option("PATH", options.paths, "Folders to make on the device")->required();
}

void Run(Tool& tool, const Options& options) {
  for (const auto& path : options.paths) MakeFolder(tool.device(), DevicePath(path));
}

}  // namespace

void AddMkdirCommand(CLI::App& app, Tool& tool) {
  AddCommand<Options>(app, tool, {"mkdir", "Make folders on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

// darokleim mkdir
#include <string>
#include <vector>

#include "command.h"
#include "commands/commands.h"
#include "file_changes.h"

namespace darokleim {
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

}  // namespace darokleim

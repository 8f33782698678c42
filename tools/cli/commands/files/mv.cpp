// darokleim mv
#include <string>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/files/relocation.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim mv /sdcard/a.txt /sdcard/b.txt                    renames
  darokleim mv "/sdcard/my folder" /sdcard/b.txt /sdcard/Music   into the folder Music

An existing file at the new path is replaced, not a folder.)";

struct Options {
  bool no_clobber = false;
  Relocation relocation;
};

void Describe(Command& command, Options& options) {
  DescribeRelocation(command, options.relocation);
  command.Flag("-n,--no-clobber", options.no_clobber, "Do not replace a file; that is an error");
}

void Run(Tool& tool, const Options& options) {
  Relocate(tool, options.relocation, "move", [&](const PhonePath& source, const std::string& target) {
    const Progress progress(tool.progress_mode(), WaitingLine("moving " + source.text));
    tool.phone().move(source.text, target, !options.no_clobber, tool.limits()).value();
  });
}

}  // namespace

void AddMvCommand(Command& root) {
  AddCommand<Options>(root, {"mv", "Move or rename files and folders on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

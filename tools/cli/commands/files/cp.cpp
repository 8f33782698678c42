// darokleim cp
#include <string>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/files/relocation.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim cp /sdcard/a.txt /sdcard/b.txt
  darokleim cp "/sdcard/my photo.jpg" /sdcard/b.jpg /sdcard/DCIM   into the folder DCIM
  darokleim cp -r /sdcard/Music /sdcard/Backup

Copies on the device. A copy gets its name when it is whole; it replaces a file of that name, not a folder.)";

struct Options {
  bool recursive = false;
  bool no_clobber = false;
  Relocation relocation;
};

void Describe(Command& command, Options& options) {
  DescribeRelocation(command, options.relocation);
  command.Flag("-r,-R,--recursive", options.recursive, "Copy folders with everything in them");
  command.Flag("-n,--no-clobber", options.no_clobber, "Do not replace a file; that is an error");
}

void Run(Tool& tool, const Options& options) {
  Relocate(tool, options.relocation, "copy", [&](const PhonePath& source, const std::string& target) {
    if (!options.recursive) {
      const auto entry = tool.phone().stat(source.text, DK_FOLLOW, tool.limits()).value();
      if (entry.type == DK_DIRECTORY) {
        throw ToolError("cannot copy " + source.text + ": it is a folder; -r copies folders.");
      }
    }
    const Progress progress(tool.progress_mode(), WaitingLine("copying " + source.text));
    tool.phone().copy(source.text, target, !options.no_clobber, tool.limits()).value();
  });
}

}  // namespace

void AddCpCommand(Command& root) {
  AddCommand<Options>(root, {"cp", "Copy files and folders on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

// darokleim chmod
#include <cstdio>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/files/entries.h"
#include "tools/cli/commands/files/file_mode.h"
#include "tools/cli/output/json_text.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim chmod 644 /data/local/tmp/a.txt
  darokleim chmod a+x /data/local/tmp/busybox "/data/local/tmp/my script"

On the shared storage (/sdcard) modes are fixed: the device accepts the change and does nothing.)";

struct Options {
  FileMode mode;
  std::vector<PhonePath> paths;
};

void Describe(Command& command, Options& options) {
  command.Positional("MODE", options.mode, "As chmod reads it: 644, a+x, u=rw,go=r").Required();
  command.Positional("PATH", options.paths, "Files or folders on the device").Required();
}

void Run(Tool& tool, const Options& options) {
  if (tool.is_json()) tool.document().BeginList("changed");
  tool.ForEach(options.paths, [&](const PhonePath& path) {
    std::uint32_t before = 0;
    bool is_folder = false;
    if (!options.mode.IsAbsolute()) {
      const auto entry = tool.phone().stat(path.text, DK_FOLLOW, tool.limits()).value();
      before = entry.mode;
      is_folder = IsFolder(entry);
    }
    const std::uint32_t mode = options.mode.AppliedTo(before, is_folder);
    tool.phone().chmod(path.text, mode, tool.limits()).value();
    if (!tool.is_json()) return;
    char octal[16];
    std::snprintf(octal, sizeof octal, "%04o", static_cast<unsigned>(mode));
    tool.document().Add(JsonObject().Text("path", path.text).Text("mode", octal).text());
  });
}

}  // namespace

void AddChmodCommand(Command& root) {
  AddCommand<Options>(root, {"chmod", "Change the mode of files on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

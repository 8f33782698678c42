// darokleim rm
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/phone_path.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim rm /sdcard/a.txt "/sdcard/my photo.jpg"
  darokleim rm -r /sdcard/old                 a folder with everything in it
  darokleim rm -f /sdcard/perhaps.txt

Without -r only files, links and empty folders are removed. A link is removed itself, not what it leads to.)";

struct Options {
  bool recursive = false;
  bool force = false;
  std::vector<PhonePath> paths;
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.paths, "Files to remove on the device").Required();
  command.Flag("-r,-R,--recursive", options.recursive, "Remove folders with everything in them");
  command.Flag("-f,--force", options.force, "Ignore paths that do not exist");
}

void Run(Tool& tool, const Options& options) {
  for (const auto& path : options.paths) {
    // The folder itself would go.
    if (path.names_its_content)
      throw UsageError("PATH must not end in /. for rm; name the folder or what is in it.");
  }
  if (tool.is_json()) tool.document().BeginList("removed");
  tool.ForEach(options.paths, [&](const PhonePath& path) {
    const Progress progress(tool.progress_mode(), WaitingLine("removing " + path.text));
    const auto removed = tool.phone().remove(path.text, options.recursive, tool.limits());
    if (options.force && removed.code() == DK_NOT_FOUND) return;
    removed.value();
    if (tool.is_json()) tool.document().Add(JsonString(path.text));
  });
}

}  // namespace

void AddRmCommand(Command& root) {
  AddCommand<Options>(root, {"rm", "Remove files and folders on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

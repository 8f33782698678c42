// darokleim stat
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/files/entries.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/table.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim stat /sdcard/DCIM
  darokleim stat --json /sdcard/a.txt "/sdcard/my photo.jpg"
  darokleim -q stat /sdcard/DCIM && echo "it is there"

Of a link, the link itself is shown and what it leads to. The exit status is 1 when a path does not exist.)";

struct Options {
  bool utc = false;
  std::vector<PhonePath> paths;
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.paths, "Files or folders on the device").Required();
  command.UtcFlag(options.utc);
}

std::string TextOf(const Output& output, const dk::Entry& entry, bool utc) {
  Table table;
  table.AddRow({"path", output.Shown(entry.path)});
  table.AddRow({"type", TypeName(entry.type)});
  if (entry.link_target) table.AddRow({"target", output.Shown(*entry.link_target)});
  if (!IsFolder(entry) && entry.size) {
    table.AddRow({"size", SizeText(*entry.size) + " (" + CountText(*entry.size, "byte") + ")"});
  }
  table.AddRow({"modified", TimeText(entry.mtime, utc)});
  table.AddRow({"mode", ModeText(entry)});
  return table.Text();
}

void Run(Tool& tool, const Options& options) {
  if (tool.is_json()) tool.document().BeginList("entries");
  bool first = true;
  tool.ForEach(options.paths, [&](const PhonePath& path) {
    const auto entry =
        tool.phone().stat(path.text, path.names_a_folder ? DK_FOLLOW : DK_NO_FOLLOW, tool.limits()).value();
    if (tool.is_json()) {
      tool.document().Add(EntryJson(entry));
    } else if (!tool.is_quiet()) {
      tool.output().Append((first ? "" : "\n") + TextOf(tool.output(), entry, options.utc));
    }
    first = false;
  });
}

}  // namespace

void AddStatCommand(Command& root) {
  AddCommand<Options>(root, {"stat", "Show type, size, time and mode of files on the device", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli

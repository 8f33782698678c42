// darokleim du
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/files/entries.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/output/table.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim du /sdcard/DCIM
  darokleim du --json /sdcard/DCIM "/sdcard/my photos"

The sum of the sizes of all files below, hidden ones included; what they take on the storage may be more. Links are not
followed. A folder that cannot be read is reported and counts as empty, and the exit status is 1.)";

struct Options {
  std::vector<PhonePath> paths;
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.paths, "Folders or files on the device").Required();
}

struct Sum {
  std::uint64_t size = 0, files = 0, folders = 0;
};

Sum Measure(Tool& tool, const PhonePath& path) {
  const Progress progress(tool.progress_mode(), WaitingLine("measuring " + path.text));
  Sum sum;
  Entries without_size;
  dk::WalkOptions options;
  options.on_error = [&tool](const dk::Error& error) {
    tool.ReportFailure(error);
    return true;
  };
  const auto add = [&](const dk_entry& entry) {
    if (entry.type == DK_DIRECTORY) ++sum.folders;
    if (entry.type != DK_FILE) return true;
    ++sum.files;
    if (entry.size_known) {
      sum.size += entry.size;
    } else {
      without_size.emplace_back(entry);
    }
    return true;
  };
  const auto walked = tool.phone().walk(path.text, options, add, tool.limits());
  if (walked.code() == DK_NOT_A_DIRECTORY && !path.names_a_folder) {
    const auto file = tool.phone().stat(path.text, DK_FOLLOW, tool.limits()).value();
    return {file.size.value_or(0), 1, 0};
  }
  if (!walked && walked.code() != DK_PARTLY_DONE) throw dk::Error(walked.error());
  CompleteSizes(tool, &without_size);
  for (const auto& entry : without_size) sum.size += entry.size.value_or(0);
  return sum;
}

void Run(Tool& tool, const Options& options) {
  if (tool.is_json()) tool.document().BeginList("sums");
  Table table;
  tool.ForEach(options.paths, [&](const PhonePath& path) {
    const Sum sum = Measure(tool, path);
    table.AddRow({SizeText(sum.size), CountText(sum.files, "file"), tool.output().Shown(path.text)});
    if (!tool.is_json()) return;
    JsonObject json;
    json.Text("path", path.text).Unsigned("size", sum.size).Unsigned("files", sum.files);
    tool.document().Add(json.Unsigned("folders", sum.folders).text());
  });
  if (!tool.is_json()) tool.output().Write(table.Text());
}

}  // namespace

void AddDuCommand(Command& root) {
  AddCommand<Options>(root, {"du", "Measure folders of the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

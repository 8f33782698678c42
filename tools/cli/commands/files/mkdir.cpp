// darokleim mkdir
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
  darokleim mkdir /sdcard/new
  darokleim mkdir -p "/sdcard/a b/c" /sdcard/d)";

struct Options {
  bool parents = false;
  std::vector<PhonePath> paths;
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.paths, "Folders to make on the device").Required();
  command.Flag("-p,--parents", options.parents,
               "Make missing parents, too; a folder that exists is not an error");
}

void Run(Tool& tool, const Options& options) {
  if (tool.is_json()) tool.document().BeginList("made");
  tool.ForEach(options.paths, [&](const PhonePath& path) {
    tool.phone().make_folder(path.text, options.parents, tool.limits()).value();
    if (tool.is_json()) tool.document().Add(JsonString(path.text));
  });
}

}  // namespace

void AddMkdirCommand(Command& root) {
  AddCommand<Options>(root, {"mkdir", "Make folders on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

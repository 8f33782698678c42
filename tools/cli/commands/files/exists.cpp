// darokleim exists
#include <json/value.h>

#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/table.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim exists /sdcard/DCIM
  darokleim exists --json /sdcard/a.txt "/sdcard/my photo.jpg"
  darokleim exists -q /sdcard/DCIM && echo "it is there"

The exit status is 0 when all of them exist and 1 otherwise. A path that adb is not allowed to see counts as missing.)";

struct Options {
  bool json = false;
  std::vector<DevicePath> paths;
};

struct Answer {
  std::string path;
  bool exists;
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.paths, "Paths of files or folders on the device").Required();
  command.JsonFlag(options.json, "an array of {path, exists}");
}

void Print(Tool& tool, const std::vector<Answer>& answers, bool as_json) {
  Table table;
  Json::Value json(Json::arrayValue);
  for (const auto& [path, exists] : answers) {
    table.AddRow({tool.output().Painted(exists ? Colour::kGood : Colour::kBad, exists ? "yes" : "no"),
                  tool.output().Shown(path)});
    Json::Value& entry = json.append(Json::objectValue);
    entry["path"] = path;
    entry["exists"] = exists;
  }
  if (as_json) {
    tool.output().WriteJson(json);
  } else if (!tool.is_quiet()) {
    tool.output().Write(table.Text());
  }
}

void Run(Tool& tool, const Options& options) {
  std::vector<Answer> answers;
  bool all = true;
  for (const auto& path : options.paths) {
    const bool exists = EntryExists(tool.device(), path);
    answers.push_back({path.text(), exists});
    all = all && exists;
  }
  Print(tool, answers, options.json);
  if (!all) throw AnswerIsNo();
}

}  // namespace

void AddExistsCommand(Command& root) {
  AddCommand<Options>(root, {"exists", "Check whether files or folders exist on the device", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli

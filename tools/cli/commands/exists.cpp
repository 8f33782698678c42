// darokleim exists
#include <string>
#include <vector>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device_entry.h"
#include "tools/cli/errors.h"
#include "tools/cli/table.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim exists /sdcard/DCIM
  darokleim exists --json /sdcard/a.txt "/sdcard/my photo.jpg"
  darokleim exists -q /sdcard/DCIM && echo "it is there"

The exit status is 0 when all of them exist and 1 otherwise. What adb may not see does not exist for it.)";

struct Options {
  bool json = false;
  std::vector<std::string> paths;
};

struct Answer {
  std::string path;
  bool exists;
};

void Describe(CLI::App& command, Options& options) {
  command.add_option("PATH", options.paths, "Paths of files or folders on the device")->required();
  AddJsonFlag(command, options.json, "an array of {path, exists}");
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
  } else if (!tool.quiet()) {
    tool.output().Write(table.Text());
  }
}

void Run(Tool& tool, const Options& options) {
  std::vector<Answer> answers;
  bool all = true;
  for (const auto& path : options.paths) {
    const bool exists = EntryExists(tool.device(), DevicePath(path));
    answers.push_back({path, exists});
    all = all && exists;
  }
  Print(tool, answers, options.json);
  if (!all) throw AnswerIsNo();
}

}  // namespace

void AddExistsCommand(CLI::App& app, Tool& tool) {
  AddCommand<Options>(app, tool, {"exists", "Ask whether files or folders exist on the device", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli

// darokleim app check
#include <darokleim.h>
#include <json/value.h>

#include <string>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/commands/apps/package.h"
#include "tools/cli/device/argument_text.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Exit status 0 when it is installed, 1 when it is not.

Examples:
  darokleim app check com.example.notes
  darokleim app check com.example.notes --json        {"installed": true, "package": "com.example.notes"}
  darokleim app check com.example.notes --ask-only    checks that the package manager answers)";

struct Options {
  Package package;
  bool ask_only = false;
  bool kept_data = false;
  bool json = false;
};

void Describe(Command& command, Options& options) {
  command.PackageArgument(options.package);
  auto& ask_only = command.Flag("--ask-only", options.ask_only,
                                "Only run `pm path`, which prints nothing for an unknown package: fails "
                                "only when the phone reports a failure");
  command.Flag("--kept-data", options.kept_data, "With --ask-only: run `pm path -k`").Needs(ask_only);
  command.JsonFlag(options.json, "an object {package, installed}").Excludes(ask_only);
}

void Ask(Tool& tool, const Options& options) {
  const auto& device = tool.device();
  CheckLength(" -s " + std::string(device.serial()) + " shell pm path -k " + options.package.name, 127,
              "the package's name");
  const int keep = options.kept_data ? 1 : 0;
  device.Check(AdbCheckAppExist(device.serial(), options.package.name.c_str(), keep, device.cancel()),
               "ask the package manager about " + options.package.name);
  tool.Report("The package manager reports no failure for " + options.package.name + ".");
}

void Run(Tool& tool, const Options& options) {
  if (options.ask_only) {
    Ask(tool, options);
    return;
  }
  const bool installed = IsInstalled(tool.device(), options.package.name);
  if (options.json) {
    Json::Value answer(Json::objectValue);
    answer["package"] = options.package.name;
    answer["installed"] = installed;
    tool.output().WriteJson(answer);
  } else {
    tool.Report(options.package.name + (installed ? " is installed." : " is not installed."));
  }
  if (!installed) throw AnswerIsNo();
}

}  // namespace

void AddAppCheckCommand(Command& group) {
  AddCommand<Options>(group, {"check", "Check whether a package is installed", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

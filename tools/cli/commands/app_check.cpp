// darokleim app check
#include <darokleim.h>

#include <string>

#include "tools/cli/app_command.h"
#include "tools/cli/command.h"
#include "tools/cli/commands/app_commands.h"
#include "tools/cli/device_words.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Exit status 0 when it is installed, 1 when it is not.

Examples:
  darokleim app check com.example.notes
  darokleim app check com.example.notes --json        {"installed": true, "package": "com.example.notes"}
  darokleim app check com.example.notes --ask-only    does the phone's package manager answer at all?)";

struct Options {
  std::string package;
  bool ask_only = false;
  bool kept_data = false;
  bool json = false;
};

void Describe(CLI::App& command, Options& options) {
  AddPackageArgument(command, options.package);
  auto* ask_only = command.add_flag("--ask-only", options.ask_only,
                                    "Only ask `pm path`, which phones answer with silence when they do not "
                                    "know the package: fails only when they report a failure");
  command.add_flag("--kept-data", options.kept_data, "With --ask-only: ask `pm path -k`")->needs(ask_only);
  AddJsonFlag(command, options.json, "an object {package, installed}");
  command.get_option("--json")->excludes(ask_only);
}

void Ask(Tool& tool, const Options& options) {
  const auto& device = tool.device();
  CheckLength(" -s " + std::string(device.serial()) + " shell pm path -k " + options.package, 127,
              "the package's name");
  const int keep = options.kept_data ? 1 : 0;
  device.Check(AdbCheckAppExist(device.serial(), options.package.c_str(), keep, device.cancel()),
               "ask the package manager for " + options.package);
  tool.Report("The package manager reports no failure for " + options.package + ".");
}

void Run(Tool& tool, const Options& options) {
  if (options.ask_only) {
    Ask(tool, options);
    return;
  }
  const bool installed = IsInstalled(tool.device(), options.package);
  if (options.json) {
    Json::Value answer(Json::objectValue);
    answer["package"] = options.package;
    answer["installed"] = installed;
    tool.output().WriteJson(answer);
  } else {
    tool.Report(options.package + (installed ? " is installed." : " is not installed."));
  }
  if (!installed) throw AnswerIsNo();
}

}  // namespace

void AddAppCheckCommand(CLI::App& group, Tool& tool) {
  AddCommand<Options>(group, tool, {"check", "Tell whether a package is installed", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

// darokleim app start
#include <darokleim.h>

#include <string>
#include <vector>

#include "tools/cli/argument_text.h"
#include "tools/cli/command.h"
#include "tools/cli/commands/app_commands.h"
#include "tools/cli/device_words.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(What stands behind -- goes to the phone's `am start`, a word for a word. Cannot be cancelled.

Examples:
  darokleim app start com.example.notes/.MainActivity
  darokleim app start com.android.settings/.Settings
  darokleim app start com.example.notes/.Open -- -a android.intent.action.VIEW --es title "My note")";

struct Options {
  std::string component;
  std::vector<std::string> extras;
};

std::string CheckComponent(const std::string& component) {
  const auto slash = component.find('/');
  const bool has_both = slash != std::string::npos && slash > 0 && slash + 1 < component.size();
  return has_both ? "" : "name the package and the activity, as com.example.notes/.MainActivity";
}

void Describe(CLI::App& command, Options& options) {
  command
      .add_option("COMPONENT", options.component, "Package and activity, as com.example.notes/.MainActivity")
      ->required()
      ->check(WordOf("._-/$", "package and activity"))
      ->check(CLI::Validator(CheckComponent, ""));
  command.add_option("OPTION", options.extras, "More options of `am start`");
}

void Run(Tool& tool, const Options& options) {
  std::string extras;
  for (const auto& word : options.extras) extras += (extras.empty() ? "" : " ") + ForBarePlace(word);
  const auto& device = tool.device();
  const std::string component = ForBarePlace(options.component);
  CheckLength("-s " + std::string(device.serial()) + " shell am start -n " + component + " " + extras, 511,
              "the list of options");
  const int code = AdbStartApp(device.serial(), component.c_str(), extras.empty() ? nullptr : extras.c_str());
  if (code == ADB_RESULT_PROTOCOL_FAULT) {
    throw ToolError("the phone cannot start " + options.component +
                    ": there is no such activity, or it may not be started from outside.");
  }
  device.Check(code, "start " + options.component);
  tool.Report("Started " + options.component + ".");
}

}  // namespace

void AddAppStartCommand(CLI::App& group, Tool& tool) {
  AddCommand<Options>(group, tool, {"start", "Start an activity of an application", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

// darokleim app start
#include <darokleim.h>

#include <string>
#include <vector>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/device/argument_text.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(The words after -- are passed to the phone's `am start` one by one.

Examples:
  darokleim app start com.example.notes/.MainActivity
  darokleim app start com.android.settings/.Settings
  darokleim app start com.example.notes/.Open -- -a android.intent.action.VIEW --es title "My note")";

struct Component {
  static constexpr ValueKind kKind = ValueKind::kText;
  static Component Parse(const std::string& word) {
    CheckWord(word, "._-/$", "package and activity");
    const auto slash = word.find('/');
    const bool has_both = slash != std::string::npos && slash > 0 && slash + 1 < word.size();
    if (!has_both)
      throw UsageError("name the package and the activity, for example com.example.notes/.MainActivity.");
    return {word};
  }
  std::string text;
};

struct Options {
  Component component;
  std::vector<std::string> extras;
};

void Describe(Command& command, Options& options) {
  command
      .Positional("COMPONENT", options.component,
                  "Package and activity, for example com.example.notes/.MainActivity")
      .Required();
  command.Positional("OPTION", options.extras, "More options of `am start`");
}

void Run(Tool& tool, const Options& options) {
  std::string extras;
  for (const auto& word : options.extras) extras += (extras.empty() ? "" : " ") + ForBarePlace(word);
  const auto& device = tool.device();
  const std::string component = ForBarePlace(options.component.text);
  CheckLength("-s " + std::string(device.serial()) + " shell am start -n " + component + " " + extras, 511,
              "the list of options");
  const int code = WithoutFlag([&] {
    return AdbStartApp(device.serial(), component.c_str(), extras.empty() ? nullptr : extras.c_str());
  });
  if (code == ADB_RESULT_PROTOCOL_FAULT) {
    throw ToolError("the phone cannot start " + options.component.text +
                    ": no such activity, or it may not be started from outside.");
  }
  device.Check(code, "start " + options.component.text);
  tool.Report("Started " + options.component.text + ".");
}

}  // namespace

void AddAppStartCommand(Command& group) {
  AddCommand<Options>(group, {"start", "Start an activity of an application", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

// darokleim app uninstall, app start, app stop, app clear
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kUninstallFooter[] = R"(Examples:
  darokleim app uninstall com.example.notes                the application and its data
  darokleim app uninstall com.example.notes --keep-data    keeps its data for the next install)";

constexpr char kStartFooter[] = R"(Without an activity, what the phone's launcher would start.

Examples:
  darokleim app start com.example.notes
  darokleim app start com.android.settings/.Settings)";

constexpr char kStopFooter[] = R"(Examples:
  darokleim app stop com.example.notes com.example.mail)";

constexpr char kClearFooter[] =
    R"(The application is as it was after its installation. What it deletes cannot be brought back.

Examples:
  darokleim app clear com.example.notes)";

struct Options {
  std::vector<Package> packages;
  bool keep_data = false;
};

void DescribePackages(Command& command, Options& options) {
  command.Positional("PACKAGE", options.packages, "Full names of packages, for example com.example.app")
      .Required();
}

void DescribeUninstall(Command& command, Options& options) {
  DescribePackages(command, options);
  command.Flag("-k,--keep-data", options.keep_data, "Keep the application's data on the device");
}

// Does the work with each package and says so. `member` is that of the document.
template <typename Work>
void ForEachPackage(Tool& tool, const Options& options, const char* member, const char* done, Work work) {
  if (tool.is_json()) tool.document().BeginList(member);
  tool.ForEach(options.packages, [&](const Package& package) {
    work(package.name).value();
    if (tool.is_json()) tool.document().Add(JsonString(package.name));
    tool.Report(done + package.name + ".");
  });
}

void RunUninstall(Tool& tool, const Options& options) {
  ForEachPackage(tool, options, "uninstalled", "Uninstalled ", [&](const std::string& package) {
    return tool.phone().uninstall(package, options.keep_data, tool.limits());
  });
}

void RunStop(Tool& tool, const Options& options) {
  ForEachPackage(tool, options, "stopped", "Stopped ",
                 [&](const std::string& package) { return tool.phone().stop(package, tool.limits()); });
}

void RunClear(Tool& tool, const Options& options) {
  ForEachPackage(tool, options, "cleared", "Deleted the data of ",
                 [&](const std::string& package) { return tool.phone().clear(package, tool.limits()); });
}

// "com.example.notes" or "com.example.notes/.MainActivity"
struct Component {
  static constexpr ValueKind kKind = ValueKind::kPackage;
  static Component Parse(const std::string& word) {
    const auto slash = word.find('/');
    Component component{Package::Parse(word.substr(0, slash)).name, ""};
    if (slash == std::string::npos) return component;
    component.activity = word.substr(slash + 1);
    CheckWord(component.activity, "._-$", "activity");
    return component;
  }
  std::string Text() const { return package + (activity.empty() ? "" : "/" + activity); }

  std::string package, activity;
};

struct StartOptions {
  std::vector<Component> components;
};

void DescribeStart(Command& command, StartOptions& options) {
  command
      .Positional(
          "PACKAGE", options.components,
          "Full names of packages, with an activity where one is meant: com.example.app/.MainActivity")
      .Required();
}

void RunStart(Tool& tool, const StartOptions& options) {
  if (tool.is_json()) tool.document().BeginList("started");
  tool.ForEach(options.components, [&tool](const Component& component) {
    tool.phone().start(component.package, component.activity, tool.limits()).value();
    if (tool.is_json()) tool.document().Add(JsonString(component.Text()));
    tool.Report("Started " + component.Text() + ".");
  });
}

}  // namespace

void AddAppUninstallCommand(Command& group) {
  AddCommand<Options>(group, {"uninstall", "Remove applications", kUninstallFooter}, DescribeUninstall,
                      RunUninstall);
}

void AddAppStartCommand(Command& group) {
  AddCommand<StartOptions>(group, {"start", "Start applications", kStartFooter}, DescribeStart, RunStart);
}

void AddAppStopCommand(Command& group) {
  AddCommand<Options>(group, {"stop", "Stop applications", kStopFooter}, DescribePackages, RunStop);
}

void AddAppClearCommand(Command& group) {
  AddCommand<Options>(group, {"clear", "Delete all data of applications", kClearFooter}, DescribePackages,
                      RunClear);
}

}  // namespace darokleim::cli

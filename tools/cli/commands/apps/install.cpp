// darokleim app install
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(An installed application is updated and keeps its data. Each APK is an application of its own, unless --split says that
they are the parts of one.

Examples:
  darokleim app install notes.apk
  darokleim app install --grant *.apk
  darokleim app install --split base.apk split_config.de.apk
  darokleim app install --downgrade notes-1.apk)";

struct Options {
  std::vector<HostPath> apks;
  bool downgrade = false;
  bool grant = false;
  bool test = false;
  bool split = false;
};

void Describe(Command& command, Options& options) {
  command.Positional("APK", options.apks, "APK files of this computer").Required();
  command.Flag("--downgrade", options.downgrade,
               "Also replace a newer version; most phones allow that for test versions only");
  command.Flag("--grant", options.grant, "Grant all permissions that it asks for");
  command.Flag("--test", options.test, "Also install what is marked as for tests only");
  command.Flag("--split", options.split, "The APKs are the parts of one application");
}

std::string NameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

using Paths = std::vector<std::string>;

// What is installed together.
std::vector<Paths> Groups(const Options& options) {
  std::vector<Paths> groups;
  for (const auto& apk : options.apks) {
    if (groups.empty() || !options.split) groups.emplace_back();
    groups.back().push_back(apk.text);
  }
  return groups;
}

void Install(Tool& tool, const Paths& paths, const Options& options) {
  TransferMeter meter;
  const std::string name = "installing " + NameOf(paths.front());
  dk::InstallOptions how;
  how.downgrade = options.downgrade;
  how.grant = options.grant;
  how.test = options.test;
  how.on_progress = [&](std::uint64_t done, std::uint64_t total) {
    meter.Set({name, done, total});
    return true;
  };
  meter.Set({name});
  const Progress progress(tool.progress_mode(), MeterLine(meter));
  tool.phone().install(paths, how, tool.limits()).value();
}

void Run(Tool& tool, const Options& options) {
  if (tool.is_json()) tool.document().BeginList("installed");
  tool.ForEach(Groups(options), [&](const Paths& paths) {
    Install(tool, paths, options);
    for (const auto& path : paths) {
      if (tool.is_json()) tool.document().Add(JsonString(path));
      tool.Report("Installed " + NameOf(path) + ".");
    }
  });
}

}  // namespace

void AddAppInstallCommand(Command& group) {
  AddCommand<Options>(group, {"install", "Install applications", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

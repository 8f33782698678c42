// darokleim app pull
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(Writes PACKAGE.apk, or for an application of several APKs a folder PACKAGE with all of them. Existing files are replaced
once the new ones are whole.

Examples:
  darokleim app pull com.example.notes              into the current folder
  darokleim app pull com.example.notes ~/apks
  darokleim app install --split com.example.notes/*.apk      on another phone)";

struct Options {
  Package package;
  HostPath folder{"."};
};

void Describe(Command& command, Options& options) {
  command.PackageArgument(options.package);
  command.Positional("FOLDER", options.folder, "Folder of this computer; otherwise the current one");
}

std::string NameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

std::vector<dk::Item> ItemsFor(const dk::App& app, const std::string& folder) {
  const std::string base = folder + (folder.ends_with('/') ? "" : "/") + app.package;
  if (app.apk_paths.size() == 1) return {{app.apk_paths.front(), base + ".apk"}};
  std::vector<dk::Item> items;
  for (const auto& path : app.apk_paths) items.push_back({path, base + "/" + NameOf(path)});
  return items;
}

void Pull(Tool& tool, const std::vector<dk::Item>& items) {
  TransferMeter meter;
  dk::TransferOptions how;
  how.existing = DK_REPLACE;
  how.on_progress = [&meter](const dk_progress& progress) {
    meter.Set({NameOf(progress.path), progress.bytes_done, progress.bytes_total, progress.files_done,
               progress.files_total});
    return true;
  };
  const Progress progress(tool.progress_mode(), MeterLine(meter));
  tool.phone().pull(items, how, tool.limits()).value();
}

void Run(Tool& tool, const Options& options) {
  if (tool.is_json()) tool.document().BeginList("files");
  const dk::App app = tool.phone().app(options.package.name, tool.limits()).value();
  if (app.apk_paths.empty())
    throw ToolError("cannot find the APK of " + app.package + ": the phone names none.");
  const auto items = ItemsFor(app, options.folder.text);
  Pull(tool, items);
  for (const auto& item : items) {
    if (tool.is_json()) {
      tool.document().Add(JsonObject().Text("source", item.source).Text("target", item.target).text());
    }
    tool.Report(item.source + " -> " + item.target);
  }
}

}  // namespace

void AddAppPullCommand(Command& group) {
  AddCommand<Options>(group, {"pull", "Copy the APK files of an application to this computer", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli

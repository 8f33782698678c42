// darokleim app list, app info, app path
#include <algorithm>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/output/table.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kListFooter[] = R"(Examples:
  darokleim app list                every application, a name on each line
  darokleim app list -l --user      what the user installed, with versions and sizes
  darokleim app list example        those with "example" in their name)";

constexpr char kInfoFooter[] = R"(Examples:
  darokleim app info com.example.notes
  darokleim app info com.example.notes --json)";

constexpr char kPathFooter[] = R"(An application of several APKs has a line for each.

Examples:
  darokleim app path com.example.notes)";

std::string VersionText(const dk::App& app) {
  const std::string code = app.version_code < 0 ? "" : " (" + std::to_string(app.version_code) + ")";
  return app.version_name.empty() ? "unknown" + code : app.version_name + code;
}

// `with_size`: it was asked for.
std::string ToJson(const dk::App& app, bool with_size) {
  JsonObject json;
  json.Text("package", app.package).Text("version_name", app.version_name);
  app.version_code < 0 ? json.Null("version_code") : json.Integer("version_code", app.version_code);
  json.Bool("system", app.system).Bool("enabled", app.enabled);
  if (with_size) json.Unsigned("size", app.size);
  return json.Json("apk_paths", JsonStrings(app.apk_paths)).text();
}

// list

struct ListOptions {
  std::string part_of_name;
  bool details = false;
  bool user = false;
  bool system = false;
  bool disabled = false;
  bool enabled = false;
};

void DescribeList(Command& command, ListOptions& options) {
  command.Positional("TEXT", options.part_of_name, "Only packages with this text in their name");
  command.Flag("-l,--long", options.details, "Show versions, sizes and APK files, too");
  auto& user = command.Flag("-3,--user", options.user, "Only what the user installed");
  command.Flag("--system", options.system, "Only what came with the phone").Excludes(user);
  auto& disabled = command.Flag("--disabled", options.disabled, "Only disabled packages");
  command.Flag("--enabled", options.enabled, "Only enabled packages").Excludes(disabled);
}

bool IsWanted(const dk::App& app, const ListOptions& options) {
  if (options.disabled && app.enabled) return false;
  if (options.enabled && !app.enabled) return false;
  return app.package.find(options.part_of_name) != std::string::npos;
}

std::vector<dk::App> List(Tool& tool, const ListOptions& options) {
  const Progress progress(tool.progress_mode(), WaitingLine("listing applications"));
  const dk_app_set set = options.user ? DK_USER_APPS : options.system ? DK_SYSTEM_APPS : DK_ALL_APPS;
  auto apps = tool.phone().apps(set, options.details, tool.limits()).value();
  const auto is_unwanted = [&options](const dk::App& app) { return !IsWanted(app, options); };
  apps.erase(std::remove_if(apps.begin(), apps.end(), is_unwanted), apps.end());
  std::sort(apps.begin(), apps.end(),
            [](const dk::App& a, const dk::App& b) { return a.package < b.package; });
  return apps;
}

std::string ListText(const Output& output, const std::vector<dk::App>& apps, const ListOptions& options) {
  Table table;
  if (options.details) table.AddRow({"PACKAGE", "VERSION", "SIZE", "KIND", "APK"});
  for (const auto& app : apps) {
    if (!options.details) {
      table.AddRow({output.Shown(app.package)});
      continue;
    }
    std::string kind = app.system ? "system" : "user";
    if (!app.enabled) kind += ", disabled";
    table.AddRow({output.Shown(app.package), output.Shown(VersionText(app)), SizeText(app.size), kind,
                  app.apk_paths.empty() ? "" : output.Shown(app.apk_paths.front())});
  }
  return table.Text();
}

void RunList(Tool& tool, const ListOptions& options) {
  if (tool.is_json()) tool.document().BeginList("apps");
  const auto apps = List(tool, options);
  if (!tool.is_json()) return tool.output().Write(ListText(tool.output(), apps, options));
  for (const auto& app : apps) tool.document().Add(ToJson(app, options.details));
}

// info, path

struct Packages {
  std::vector<Package> packages;
};

void DescribePackages(Command& command, Packages& options) {
  command.Positional("PACKAGE", options.packages, "Full names of packages, for example com.example.app")
      .Required();
}

std::string InfoText(const Output& output, const dk::App& app) {
  Table table;
  const auto add = [&](const char* label, const std::string& text) {
    table.AddRow({output.Painted(Colour::kFaint, label), output.Shown(text)});
  };
  add("Package", app.package);
  add("Version", VersionText(app));
  add("Size", SizeText(app.size));
  add("Part of the system", app.system ? "yes" : "no");
  add("Enabled", app.enabled ? "yes" : "no");
  for (const auto& path : app.apk_paths) add("APK", path);
  return table.Text();
}

void RunInfo(Tool& tool, const Packages& options) {
  if (tool.is_json()) tool.document().BeginList("apps");
  tool.ForEach(options.packages, [&](const Package& package) {
    const dk::App app = tool.phone().app(package.name, tool.limits()).value();
    if (tool.is_json()) {
      tool.document().Add(ToJson(app, true));
    } else {
      tool.output().Write((&package == &options.packages.front() ? "" : "\n") + InfoText(tool.output(), app));
    }
  });
}

void RunPath(Tool& tool, const Packages& options) {
  if (tool.is_json()) tool.document().BeginList("apps");
  tool.ForEach(options.packages, [&tool](const Package& package) {
    const dk::App app = tool.phone().app(package.name, tool.limits()).value();
    if (tool.is_json()) {
      const std::string paths = JsonStrings(app.apk_paths);
      return tool.document().Add(JsonObject().Text("package", app.package).Json("apk_paths", paths).text());
    }
    for (const auto& path : app.apk_paths) tool.output().Write(tool.output().Shown(path) + "\n");
  });
}

}  // namespace

void AddAppListCommand(Command& group) {
  AddCommand<ListOptions>(group, {"list", "List the installed applications", kListFooter}, DescribeList,
                          RunList);
}

void AddAppInfoCommand(Command& group) {
  AddCommand<Packages>(group, {"info", "Show version, size and APK files of applications", kInfoFooter},
                       DescribePackages, RunInfo);
}

void AddAppPathCommand(Command& group) {
  AddCommand<Packages>(group, {"path", "Show where the APK files of applications are", kPathFooter},
                       DescribePackages, RunPath);
}

}  // namespace darokleim::cli

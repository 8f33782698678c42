// darokleim app list
#include <darokleim.h>
#include <json/value.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/device/argument_text.h"
#include "tools/cli/device/library_block.h"
#include "tools/cli/output/table.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim app list                     all installed packages
  darokleim app list --third-party       those that the user installed
  darokleim app list google --paths      those with "google" in their name, and their APK files
  darokleim app list --json              [{"package": "com.example.notes"}])";

struct PartOfName {
  static constexpr ValueKind kKind = ValueKind::kText;
  static PartOfName Parse(const std::string& word) {
    CheckWord(word, "._-", "part of a package name");
    return {word};
  }
  std::string text;
};

struct Options {
  PartOfName part_of_name;
  bool third_party = false;
  bool system = false;
  bool disabled = false;
  bool enabled = false;
  bool paths = false;
  bool json = false;
};

struct Package {
  std::string name;
  std::string path;  // empty unless asked for
};

void Describe(Command& command, Options& options) {
  command.Positional("TEXT", options.part_of_name, "Only packages with this in their name");
  auto& third_party = command.Flag("-3,--third-party", options.third_party, "Only what the user installed");
  command.Flag("--system", options.system, "Only what came with the phone").Excludes(third_party);
  auto& disabled = command.Flag("--disabled", options.disabled, "Only disabled packages");
  command.Flag("--enabled", options.enabled, "Only enabled packages").Excludes(disabled);
  command.Flag("--paths", options.paths, "Show the APK file of each");
  command.JsonFlag(options.json, "an array of {package}, with --paths of {package, path}");
}

// As `pm list packages` reads it.
std::string Filter(const Options& options) {
  std::string filter;
  if (options.third_party) filter += "-3 ";
  if (options.system) filter += "-s ";
  if (options.disabled) filter += "-d ";
  if (options.enabled) filter += "-e ";
  if (options.paths) filter += "-f ";
  return filter + options.part_of_name.text;
}

// From "package:NAME", with_path "package:PATH=NAME"; the path may hold '=', the name does not.
Package ParsePackage(std::string_view entry, bool with_path) {
  const auto equals = with_path ? entry.rfind('=') : std::string_view::npos;
  if (equals == std::string_view::npos) return {std::string(entry), ""};
  return {std::string(entry.substr(equals + 1)), std::string(entry.substr(0, equals))};
}

std::vector<Package> ParsePackages(std::string_view list, bool with_paths) {
  constexpr std::string_view kPrefix = "package:";
  std::vector<Package> packages;
  while (!list.empty()) {
    auto line = list.substr(0, list.find('\n'));
    list.remove_prefix(std::min(line.size() + 1, list.size()));
    line = line.substr(0, line.find_last_not_of("\r ") + 1);
    if (line.substr(0, kPrefix.size()) != kPrefix) continue;
    packages.push_back(ParsePackage(line.substr(kPrefix.size()), with_paths));
  }
  std::sort(packages.begin(), packages.end(),
            [](const Package& a, const Package& b) { return a.name < b.name; });
  return packages;
}

std::vector<Package> ListPackages(const Device& device, const Options& options) {
  const std::string filter = Filter(options);
  CheckLength(" -s " + std::string(device.serial()) + " shell pm list packages --user 9999 " + filter, 255,
              "the part of a package name");
  LibraryBlock list;
  const int code = AdbGetPackagesNameOfInstalled(device.serial(), filter.c_str(), list.text(), list.length(),
                                                 device.cancel());
  device.Check(code, "list applications");
  // Without a list and without a failure: the phone refused it for every user.
  if (*list.text() == nullptr) device.Check(ADB_RESULT_USER_ACCESS_DENIED, "list applications");
  return ParsePackages(list.Bytes(), options.paths);
}

Json::Value ToJson(const std::vector<Package>& packages, bool with_paths) {
  Json::Value list(Json::arrayValue);
  for (const auto& package : packages) {
    Json::Value& entry = list.append(Json::objectValue);
    entry["package"] = package.name;
    if (with_paths) entry["path"] = package.path;
  }
  return list;
}

void Run(Tool& tool, const Options& options) {
  const auto packages = ListPackages(tool.device(), options);
  if (options.json) {
    tool.output().WriteJson(ToJson(packages, options.paths));
    return;
  }
  Table table;
  for (const auto& package : packages) {
    table.AddRow({tool.output().Shown(package.name),
                  tool.output().Painted(Colour::kFaint, tool.output().Shown(package.path))});
  }
  tool.output().Write(table.Text());
}

}  // namespace

void AddAppListCommand(Command& group) {
  AddCommand<Options>(group, {"list", "List the installed packages", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

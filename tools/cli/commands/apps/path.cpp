// darokleim app path
#include <darokleim.h>
#include <json/value.h>

#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/commands/apps/package.h"
#include "tools/cli/device/library_block.h"
#include "tools/cli/output/json.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim app path com.example.notes           its APK files on the phone, a line for each
  darokleim app path com.example.notes --base    the first of them only
  darokleim app path com.example.notes --json    {"package": "com.example.notes", "paths": ["/data/app/…"]})";

// The most that the library writes, whatever size it is given.
constexpr int kRoom = 4096;

struct Options {
  Package package;
  bool base = false;
  bool json = false;
};

void Describe(Command& command, Options& options) {
  command.PackageArgument(options.package);
  command.Flag("--base", options.base, "Only the first file, the base of a split package");
  command.JsonFlag(options.json, "an object {package, paths}");
}

// The library also says "not found" when the device could not be asked.
void CheckPaths(const Device& device, int code, const std::string& package) {
  if (code == ADB_RESULT_NOT_FOUND) RequireInstalled(device, package);
  device.Check(code, "find the files of " + package);
}

Json::Value BasePath(const Device& device, const std::string& package) {
  std::vector<char> path(kRoom);
  CheckPaths(device,
             AdbGetApkPathOfInstatlled(device.serial(), package.c_str(), path.data(), kRoom, device.cancel()),
             package);
  Json::Value paths(Json::arrayValue);
  paths.append(path.data());
  return paths;
}

Json::Value AllPaths(const Device& device, const std::string& package) {
  LibraryBlock json;
  CheckPaths(device,
             AdbGetApkPathOfInstatlledEx(device.serial(), package.c_str(), json.text(), json.length(),
                                         device.cancel()),
             package);
  return ParseJson(json.Text(), "a list of files")["path"];
}

void Run(Tool& tool, const Options& options) {
  const auto& device = tool.device();
  const Json::Value paths =
      options.base ? BasePath(device, options.package.name) : AllPaths(device, options.package.name);
  if (options.json) {
    Json::Value answer(Json::objectValue);
    answer["package"] = options.package.name;
    answer["paths"] = paths;
    tool.output().WriteJson(answer);
    return;
  }
  for (const auto& path : paths) tool.output().Write(tool.output().Shown(path.asString()) + "\n");
}

}  // namespace

void AddAppPathCommand(Command& group) {
  AddCommand<Options>(group, {"path", "Show where the APK files of a package are", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

// darokleim app path
#include <darokleim.h>
#include <json/reader.h>

#include <memory>
#include <string>
#include <vector>

#include "tools/cli/app_command.h"
#include "tools/cli/command.h"
#include "tools/cli/commands/app_commands.h"
#include "tools/cli/device_words.h"
#include "tools/cli/errors.h"
#include "tools/cli/library_block.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim app path com.example.notes           its APK files on the phone, a line for each
  darokleim app path com.example.notes --base    the first of them only
  darokleim app path com.example.notes --json    {"package": "com.example.notes", "paths": ["/data/app/…"]})";

// The library takes the room for granted; no path is this long.
constexpr int kRoom = 1 << 20;

struct Options {
  std::string package;
  bool base = false;
  bool json = false;
};

void Describe(CLI::App& command, Options& options) {
  AddPackageArgument(command, options.package);
  command.add_flag("--base", options.base, "Only the first file, the base of a split package");
  AddJsonFlag(command, options.json, "an object {package, paths}");
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
  Json::Value document;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  const auto text = json.Text();
  if (!reader->parse(text.data(), text.data() + text.size(), &document, nullptr)) {
    throw ToolError("cannot read the library's list of the files of " + package + ".");
  }
  return document["path"];
}

void Run(Tool& tool, const Options& options) {
  const auto& device = tool.device();
  const Json::Value paths =
      options.base ? BasePath(device, options.package) : AllPaths(device, options.package);
  if (options.json) {
    Json::Value answer(Json::objectValue);
    answer["package"] = options.package;
    answer["paths"] = paths;
    tool.output().WriteJson(answer);
    return;
  }
  for (const auto& path : paths) tool.output().Write(tool.output().Shown(path.asString()) + "\n");
}

}  // namespace

void AddAppPathCommand(CLI::App& group, Tool& tool) {
  AddCommand<Options>(group, tool, {"path", "Show where the APK files of a package are", kFooter}, Describe,
                      Run);
}

}  // namespace darokleim::cli

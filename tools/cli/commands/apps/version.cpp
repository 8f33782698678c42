// darokleim app version
#include <darokleim.h>
#include <json/value.h>

#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/apps/app_commands.h"
#include "tools/cli/commands/apps/package.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(Prints the digits and dots at the start of the version name: 1.2.3 of 1.2.3-beta.

Examples:
  darokleim app version com.example.notes           1.2.3
  darokleim app version com.example.notes --json    {"package": "com.example.notes", "version": "1.2.3"})";

// The most that the library writes, whatever size it is given.
constexpr int kRoom = 4096;

struct Options {
  Package package;
  bool json = false;
};

void Describe(Command& command, Options& options) {
  command.PackageArgument(options.package);
  command.JsonFlag(options.json, "an object {package, version}");
}

std::string ReadVersion(const Device& device, const std::string& package) {
  std::vector<char> version(kRoom);
  const int code = AdbGetAppVersion(device.serial(), package.c_str(), version.data(), kRoom, device.cancel());
  if (code == ADB_RESULT_NOT_FOUND) {
    RequireInstalled(device, package);
    throw ToolError("the version name of " + package + " does not begin with a number.");
  }
  device.Check(code, "read the version of " + package);
  return version.data();
}

void Run(Tool& tool, const Options& options) {
  const std::string version = ReadVersion(tool.device(), options.package.name);
  if (!options.json) {
    tool.output().Write(tool.output().Shown(version) + "\n");
    return;
  }
  Json::Value answer(Json::objectValue);
  answer["package"] = options.package.name;
  answer["version"] = version;
  tool.output().WriteJson(answer);
}

}  // namespace

void AddAppVersionCommand(Command& group) {
  AddCommand<Options>(group, {"version", "Show the version of an installed package", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

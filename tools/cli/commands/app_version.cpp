// darokleim app version
#include <darokleim.h>

#include <string>
#include <vector>

#include "tools/cli/app_command.h"
#include "tools/cli/command.h"
#include "tools/cli/commands/app_commands.h"
#include "tools/cli/device_words.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(The digits and dots that the version's name begins with: 1.2.3 of 1.2.3-beta.

Examples:
  darokleim app version com.example.notes           1.2.3
  darokleim app version com.example.notes --json    {"package": "com.example.notes", "version": "1.2.3"})";

// The library takes the room for granted; a line of a phone's answer is far from this long.
constexpr int kRoom = 1 << 20;

struct Options {
  std::string package;
  bool json = false;
};

void Describe(CLI::App& command, Options& options) {
  AddPackageArgument(command, options.package);
  AddJsonFlag(command, options.json, "an object {package, version}");
}

std::string ReadVersion(const Device& device, const std::string& package) {
  std::vector<char> version(kRoom);
  const int code = AdbGetAppVersion(device.serial(), package.c_str(), version.data(), kRoom, device.cancel());
  if (code == ADB_RESULT_NOT_FOUND) {
    RequireInstalled(device, package);
    throw ToolError("the version of " + package + " has a name that does not begin with a number.");
  }
  device.Check(code, "read the version of " + package);
  return version.data();
}

void Run(Tool& tool, const Options& options) {
  const std::string version = ReadVersion(tool.device(), options.package);
  if (!options.json) {
    tool.output().Write(version + "\n");
    return;
  }
  Json::Value answer(Json::objectValue);
  answer["package"] = options.package;
  answer["version"] = version;
  tool.output().WriteJson(answer);
}

}  // namespace

void AddAppVersionCommand(CLI::App& group, Tool& tool) {
  AddCommand<Options>(group, tool, {"version", "Show the version of an installed package", kFooter}, Describe,
                      Run);
}

}  // namespace darokleim::cli

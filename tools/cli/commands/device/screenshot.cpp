// darokleim screenshot
#include <darokleim.h>
#include <json/value.h>
#include <time.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/device/file_changes.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/host_file.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/progress.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

constexpr char kFooter[] = R"(Examples:
  darokleim screenshot                 a PNG file in the current folder, named after the time
  darokleim screenshot screen.png
  darokleim screenshot ~/Pictures      the same in a folder
  darokleim screenshot --on-device /sdcard/Pictures/screen.png

An existing file is replaced once the picture is complete.)";

// Where the library puts the picture first, under the name of the file on the computer.
constexpr char kStagingFolder[] = "/data/local/tmp";

struct Options {
  bool json = false;
  bool on_device = false;
  HostOrDevicePath path{"."};
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.path, "File or folder for the picture; otherwise the current folder");
  command.Flag("--on-device", options.on_device, "PATH is a file on the device; the picture stays there");
  command.JsonFlag(options.json, "{path, size}");
}

struct Picture {
  std::string path;
  std::uint64_t size;
};

std::string NameForNow() {
  const time_t now = time(nullptr);
  tm parts{};
  localtime_r(&now, &parts);
  char name[64];
  strftime(name, sizeof name, "screenshot-%Y%m%d-%H%M%S.png", &parts);
  return name;
}

fs::path TargetOnHost(const std::string& named) {
  fs::path path = AbsolutePath(named);
  std::error_code error;
  if (fs::is_directory(path, error)) return path / NameForNow();
  if (named.ends_with('/') || !fs::is_directory(path.parent_path(), error)) {
    throw ToolError("cannot write the screenshot to " + named + ": no such folder on this computer.");
  }
  return path;
}

[[noreturn]] void ThrowNoPicture() {
  throw ToolError(
      "cannot take a screenshot: the device returned no picture. Its screen may be protected or off.");
}

Picture TakeToHost(const Device& device, const std::string& named) {
  const fs::path target = TargetOnHost(named);
  UnfinishedOnHost file(target);
  // A name of this process's own: two tools at once must not use the same picture on the device.
  const fs::path unfinished = file.path().native() + "-" + std::to_string(getpid()) + ".png";
  StagedFile picture(device, std::string(kStagingFolder) + "/" + unfinished.filename().native());
  device.Check(AdbScreencapToPC(device.serial(), unfinished.c_str(), device.cancel()), "take a screenshot");
  picture.SetGone();
  const auto size = SizeOnHost(unfinished);
  if (size == 0) ThrowNoPicture();
  fs::rename(unfinished, file.path());
  file.PutInPlace();
  return {target.native(), size};
}

Picture TakeOnDevice(const Device& device, const DevicePath& path) {
  const auto target = TargetFor(device, path, NameForNow());
  UnfinishedFile file(device, target);
  const std::string argument = file.path().text();
  device.Check(AdbScreencapToDevice(device.serial(), argument.c_str(), device.cancel()), "take a screenshot");
  const auto entry = FindEntry(device, file.path());
  if (!entry || entry->size == 0) ThrowNoPicture();
  file.PutInPlace();
  return {target.text(), entry->size.value_or(0)};
}

Picture Take(Tool& tool, const Options& options) {
  const Progress progress(!tool.is_quiet(), WaitingLine("taking a screenshot"));
  if (options.on_device) return TakeOnDevice(tool.device(), DevicePath(options.path.text));
  return TakeToHost(tool.device(), options.path.text);
}

void Run(Tool& tool, const Options& options) {
  const auto picture = Take(tool, options);
  if (!options.json) {
    tool.Report(tool.output().Shown(picture.path) + "  " + SizeText(picture.size));
    return;
  }
  Json::Value json(Json::objectValue);
  json["path"] = picture.path;
  json["size"] = Json::UInt64(picture.size);
  tool.output().WriteJson(json);
}

}  // namespace

void AddScreenshotCommand(Command& root) {
  AddCommand<Options>(root, {"screenshot", "Take a picture of the device's screen", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

// darokleim screenshot
#include <darokleim.h>
#include <time.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device_entry.h"
#include "tools/cli/errors.h"
#include "tools/cli/file_changes.h"
#include "tools/cli/host_file.h"
#include "tools/cli/human_text.h"
#include "tools/cli/progress.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

constexpr char kFooter[] = R"(Examples:
  darokleim screenshot                 a PNG file in the current folder, named after the time
  darokleim screenshot screen.png
  darokleim screenshot ~/Pictures      the same in a folder
  darokleim screenshot --on-device /sdcard/Pictures/screen.png

What stood under the name is replaced once the picture is whole.)";

// Where the library puts the picture on its way to the computer, under the name of the file there.
constexpr char kOnItsWay[] = "/data/local/tmp";

struct Options {
  bool json = false;
  bool on_device = false;
  std::string path = ".";
};

void Describe(CLI::App& command, Options& options) {
  command.add_option("PATH", options.path, "File or folder for the picture; otherwise the current folder");
  command.add_flag("--on-device", options.on_device, "PATH is a file on the device; the picture stays there");
  AddJsonFlag(command, options.json, "{path, size}");
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
    throw ToolError("cannot write the screenshot to " + named +
                    ": there is no such folder on this computer.");
  }
  return path;
}

// After a failure the library leaves its picture on the device.
class PictureOnItsWay {
 public:
  PictureOnItsWay(const Device& device, const std::string& name)
      : device_(device), path_(std::string(kOnItsWay) + "/" + name) {}
  ~PictureOnItsWay() {
    if (!arrived_) AdbRemoveFile(device_.serial(), path_.c_str(), nullptr);
  }
  PictureOnItsWay(const PictureOnItsWay&) = delete;
  PictureOnItsWay& operator=(const PictureOnItsWay&) = delete;

  void SetArrived() { arrived_ = true; }

 private:
  const Device& device_;
  std::string path_;
  bool arrived_ = false;
};

[[noreturn]] void ThrowNoPicture() {
  throw ToolError(
      "cannot take a screenshot: the device made no picture. Its screen may be protected or off.");
}

Picture TakeToHost(const Device& device, const std::string& named) {
  const fs::path target = TargetOnHost(named);
  UnfinishedOnHost file(target);
  // A name of this process's own: two tools at once would share the picture on the device.
  const fs::path unfinished = file.path().native() + "-" + std::to_string(getpid()) + ".png";
  PictureOnItsWay picture(device, unfinished.filename().native());
  device.Check(AdbScreencapToPC(device.serial(), unfinished.c_str(), device.cancel()), "take a screenshot");
  picture.SetArrived();
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
  if (options.on_device) return TakeOnDevice(tool.device(), DevicePath(options.path));
  return TakeToHost(tool.device(), options.path);
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

void AddScreenshotCommand(CLI::App& app, Tool& tool) {
  AddCommand<Options>(app, tool, {"screenshot", "Take a picture of the device's screen", kFooter}, Describe,
                      Run);
}

}  // namespace darokleim::cli

// darokleim screenshot
#include <time.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/host_file.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

constexpr char kFooter[] = R"(Examples:
  darokleim screenshot                 a PNG file in the current folder, named after the time
  darokleim screenshot screen.png
  darokleim screenshot ~/Pictures      the same in a folder
  darokleim screenshot - | convert - -resize 50% small.png

An existing file is replaced once the picture is complete.)";

struct Options {
  HostPath path{"."};
};

void Describe(Command& command, Options& options) {
  command.Positional("FILE", options.path, "File or folder for the picture; - is standard output");
}

std::string NameForNow() {
  const time_t now = time(nullptr);
  tm parts{};
  localtime_r(&now, &parts);
  char name[64];
  strftime(name, sizeof name, "screenshot-%Y%m%d-%H%M%S.png", &parts);
  return name;
}

fs::path TargetFor(const std::string& named) {
  fs::path path = AbsolutePath(named);
  std::error_code error;
  if (fs::is_directory(path, error)) return path / NameForNow();
  if (named.ends_with('/') || !fs::is_directory(path.parent_path(), error)) {
    throw ToolError("cannot write the screenshot to " + named + ": no such folder on this computer.");
  }
  return path;
}

void WriteTo(const fs::path& target, const std::string& picture) {
  UnfinishedOnHost file(target);
  std::ofstream stream(file.path(), std::ios::binary);
  stream.write(picture.data(), static_cast<std::streamsize>(picture.size()));
  stream.close();
  if (!stream) throw ToolError("cannot write " + target.native() + ": " + SystemErrorText(errno) + ".");
  file.PutInPlace();
}

std::string Take(Tool& tool) {
  const Progress progress(tool.progress_mode(), WaitingLine("taking a screenshot"));
  return tool.phone().screenshot(tool.limits()).value();
}

void Run(Tool& tool, const Options& options) {
  if (options.path.text == "-") {
    if (tool.is_json()) throw UsageError("--json and a picture on standard output exclude each other.");
    tool.output().Write(Take(tool));
    return;
  }
  const fs::path target = TargetFor(options.path.text);
  const std::string picture = Take(tool);
  WriteTo(target, picture);
  if (tool.is_json()) {
    tool.document().Member("path", JsonString(target.native()));
    tool.document().Member("size", std::to_string(picture.size()));
  }
  tool.Report(target.native() + "  " + SizeText(picture.size()));
}

}  // namespace

void AddScreenshotCommand(Command& root) {
  AddCommand<Options>(root, {"screenshot", "Take a picture of the device's screen", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

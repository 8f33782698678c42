// darokleim tree
#include <darokleim.h>
#include <json/value.h>

#include <string>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/device/file_listing.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/progress.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim tree /sdcard/DCIM
  darokleim tree --json "/sdcard/my photos"

Runs one adb command for each folder, so a large tree takes a while. Folders without a file anywhere below them are not
shown, nor names of a dot and one character, such as ".a"; `darokleim ls -R -a` shows those. Times are in this
computer's time zone.)";

struct Options {
  bool json = false;
  bool details = false;
  DevicePath path{"/sdcard"};
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.path, "Folder on the device; otherwise /sdcard");
  command.Flag("-l,--long", options.details, "Show sizes and times");
  command.JsonFlag(
      options.json,
      "{Name, Dir, File}, where Dir holds such objects and File {Name, Size, Time}; names are paths");
}

struct Totals {
  std::uint64_t folders = 0;
  std::uint64_t files = 0;
  std::uint64_t bytes = 0;
  std::size_t lost_names = 0;
};

// Draws the tree. Its depth is that of a path on the device, some two thousand folders at most.
class Drawing {
 public:
  Drawing(const Output& output, bool details) : output_(output), details_(details) {}

  void AddFolder(const Json::Value& folder, const std::string& indentation) {
    const Json::Value& folders = folder["Dir"];
    const Json::Value& files = folder["File"];
    Json::ArrayIndex left = folders.size() + files.size();
    for (const Json::Value& child : folders) {
      const bool last = --left == 0;
      ++totals_.folders;
      AddLine(indentation, last, output_.Painted(Colour::kFolder, Name(child)) + "/");
      AddFolder(child, indentation + (last ? "    " : "\u2502   "));
    }
    for (const Json::Value& file : files) AddFile(file, indentation, --left == 0);
  }

  const std::string& text() const { return text_; }
  const Totals& totals() const { return totals_; }

 private:
  void AddFile(const Json::Value& file, const std::string& indentation, bool last) {
    const auto size = file["Size"].asUInt64();
    ++totals_.files;
    totals_.bytes += size;
    std::string line = Name(file);
    if (details_) {
      line += "  " + output_.Painted(Colour::kFaint, SizeText(size) + "  " + file["Time"].asString());
    }
    AddLine(indentation, last, line);
  }

  std::string Name(const Json::Value& entry) {
    const std::string path = entry["Name"].asString();
    const std::string name = path.substr(path.rfind('/') + 1);
    if (HasLostBytes(name)) ++totals_.lost_names;
    return output_.Shown(name);
  }

  void AddLine(const std::string& indentation, bool last, const std::string& line) {
    text_ += indentation + (last ? "\u2514\u2500\u2500 " : "\u251c\u2500\u2500 ") + line + "\n";
  }

  const Output& output_;
  bool details_;
  std::string text_;
  Totals totals_;
};

Json::Value ReadTree(const Tool& tool, const Device& device, const DevicePath& path) {
  const std::string action = "list " + path.text();
  const Progress progress(!tool.is_quiet(), WaitingLine("listing " + path.text()));
  if (!RequireEntry(device, path, action).is_folder) {
    throw ToolError("cannot " + action + ": it is a file, not a folder.");
  }
  if (path.IsRoot()) throw ToolError("cannot " + action + " as a tree: name a folder in it.");
  return ReadListing(device, action, [&](char** json, int* length) {
    return AdbGetDirFilesAndDirs(device.serial(), path.c_str(), json, length, 1, 1, device.cancel());
  });
}

void Run(Tool& tool, const Options& options) {
  const DevicePath& path = options.path;
  const auto tree = ReadTree(tool, tool.device(), path);
  Drawing drawing(tool.output(), options.details);
  drawing.AddFolder(tree, "");
  const auto& totals = drawing.totals();
  if (options.json) {
    tool.output().WriteJson(tree);
  } else {
    tool.output().Write(tool.output().Shown(path.text()) + "\n" + drawing.text() + "\n" +
                        CountText(totals.folders, "folder") + ", " + CountText(totals.files, "file") + ", " +
                        SizeText(totals.bytes) + "\n");
  }
  WarnOfLostNames(totals.lost_names);
}

}  // namespace

void AddTreeCommand(Command& root) {
  AddCommand<Options>(root, {"tree", "Show the files below a folder on the device as a tree", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli

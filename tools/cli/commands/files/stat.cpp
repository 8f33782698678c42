// darokleim stat
#include <darokleim.h>
#include <json/value.h>

#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/table.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim stat /sdcard/DCIM/a.jpg
  darokleim stat --json /sdcard/a.txt /sdcard/b.txt
  darokleim stat --time-from-folder /sdcard/a.txt   on a device whose stat does not show times

With --time-from-folder the time comes from adb's listing of the folder. That is slow in a large folder, does not work
for a name with a space, and may return the time of another file whose name contains this one.)";

struct Options {
  bool json = false;
  bool time_from_folder = false;
  std::vector<DevicePath> paths;
};

struct Facts {
  DevicePath path;
  DeviceEntry entry;
  unsigned long long modified = 0;  // seconds since 1970 UTC; 0 when the device does not report it
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.paths, "Paths of files or folders on the device").Required();
  command.Flag("--time-from-folder", options.time_from_folder,
               "Take the time from adb's listing of the folder, not from the device's stat");
  command.JsonFlag(options.json, "an array of {path, type, size, modified, modified_seconds}");
}

Facts ReadFacts(const Device& device, const DevicePath& path, bool time_from_folder) {
  const std::string action = "read the facts of " + path.text();
  Facts facts{path, RequireEntry(device, path, action)};
  const auto read_time = time_from_folder ? AdbGetFileCreateTimeFromLs : AdbGetFileCreateTime;
  device.Check(read_time(device.serial(), path.c_str(), &facts.modified, device.cancel()), action);
  return facts;
}

std::string ToText(const Output& output, const Facts& facts) {
  Table table;
  table.AddRow({"path", output.Shown(facts.path.text())});
  table.AddRow({"type", facts.entry.is_folder ? "folder" : "file"});
  if (facts.entry.size) {
    table.AddRow({"size", SizeText(*facts.entry.size) + " (" + CountText(*facts.entry.size, "byte") + ")"});
  }
  table.AddRow({"modified",
                facts.modified == 0 ? "unknown" : LocalTimeText(static_cast<std::int64_t>(facts.modified))});
  return table.Text();
}

Json::Value ToJson(const Facts& facts) {
  Json::Value json(Json::objectValue);
  json["path"] = facts.path.text();
  json["type"] = facts.entry.is_folder ? "folder" : "file";
  if (facts.entry.size) json["size"] = Json::UInt64(*facts.entry.size);
  if (facts.modified != 0) {
    json["modified"] = UtcTimeText(static_cast<std::int64_t>(facts.modified));
    json["modified_seconds"] = Json::UInt64(facts.modified);
  }
  return json;
}

void Run(Tool& tool, const Options& options) {
  std::string text;
  Json::Value json(Json::arrayValue);
  for (const auto& path : options.paths) {
    const auto facts = ReadFacts(tool.device(), path, options.time_from_folder);
    if (!text.empty()) text += '\n';
    text += ToText(tool.output(), facts);
    json.append(ToJson(facts));
  }
  if (options.json) {
    tool.output().WriteJson(json);
  } else {
    tool.output().Write(text);
  }
}

}  // namespace

void AddStatCommand(Command& root) {
  AddCommand<Options>(root, {"stat", "Show type, size and time of files on the device", kFooter}, Describe,
                      Run);
}

}  // namespace darokleim::cli

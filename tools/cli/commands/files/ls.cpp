// darokleim ls
#include <darokleim.h>
#include <json/value.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/argument_text.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/device/file_listing.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/progress.h"
#include "tools/cli/output/table.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim ls /sdcard               files and folders
  darokleim ls -l "/sdcard/my photos"  with sizes and times
  darokleim ls -R -a /sdcard/DCIM    everything below, hidden files included
  darokleim ls --files /sdcard       only files: fast where folders hold many files
  darokleim ls --json --service /sdcard/DCIM

A folder is shown with the number of files below it, their total size and their latest time. The library lists files
only, so a folder without any file below it is not shown, and neither are links.

Times are those of the device's clock, to the minute. With --service adb's own listing is used, which does not need
the device's ls: times to the second in this computer's time zone, but names of a dot and one character, such as ".a",
are missing.

Names are printed byte for byte, on a terminal without control characters. In a listing, bytes that are not UTF-8 are
shown as U+FFFD, in text and in JSON.)";

struct Options {
  bool json = false;
  bool details = false;
  bool hidden = false;
  bool recursive = false;
  bool files_only = false;
  bool service = false;
  DevicePath path{"/sdcard"};
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.path, "Folder or file on the device; otherwise /sdcard");
  command.Flag("-l,--long", options.details, "Show sizes and times");
  command.Flag("-a,--all", options.hidden, "Show names that begin with a dot");
  auto& recursive =
      command.Flag("-R,--recursive", options.recursive, "Show all files below, with their paths");
  command.Flag("--files", options.files_only, "Show the folder's own files only").Excludes(recursive);
  command.Flag("--service", options.service, "Use adb's own listing, not the device's ls");
  command.JsonFlag(options.json, "an array of {name, path, type, size, time, files}");
}

struct Row {
  std::string path;
  std::uint64_t size = 0;
  std::string time;
  std::uint64_t seconds = 0;
  std::uint64_t files_below = 0;  // 0 for a file
};

// A file, or the first folder on the way to it.
void AddTo(std::map<std::string, Row>& rows, const ListedFile& file, std::size_t prefix) {
  const auto slash = file.path.find('/', prefix + 1);
  Row& row = rows[file.path.substr(0, slash)];
  row.path = file.path.substr(0, slash);
  row.size += file.size;
  row.time = std::max(row.time, file.time);
  row.seconds = std::max(row.seconds, file.seconds);
  if (slash != std::string::npos) ++row.files_below;
}

std::vector<Row> Rows(const std::vector<ListedFile>& files, const DevicePath& folder, bool collapse) {
  std::vector<Row> rows;
  if (!collapse) {
    for (const auto& file : files) rows.push_back({file.path, file.size, file.time, file.seconds});
    return rows;
  }
  std::map<std::string, Row> by_path;
  for (const auto& file : files) AddTo(by_path, file, folder.IsRoot() ? 0 : folder.text().size());
  for (const auto& [path, row] : by_path) rows.push_back(row);
  return rows;
}

// The listing of a folder that adb may not read is empty, like that of an empty folder; a search reports the refusal.
void CheckReadable(const Device& device, const DevicePath& folder) {
  const auto listing = [&](char** json, int* length) {
    const std::string path = ForBarePlace(folder.text());
    const int code = AdbGetFilesBySuffix(device.serial(), path.c_str(), "'*'", json, length, device.cancel());
    return code == ADB_RESULT_PERMISSION_DENIED ? code : ADB_RESULT_OK;
  };
  ReadListing(device, "list " + folder.text(), listing);
}

// Of a file that is listed alone.
Row ReadRow(const Device& device, const DevicePath& path, const DeviceEntry& entry) {
  unsigned long long seconds = 0;
  device.Check(AdbGetFileCreateTime(device.serial(), path.c_str(), &seconds, device.cancel()),
               "read the time of " + path.text());
  return {path.text(), entry.size.value_or(0), seconds == 0 ? "" : LocalTimeText(seconds), seconds};
}

std::vector<Row> ReadRows(const Tool& tool, const Device& device, const DevicePath& path,
                          const Options& options) {
  const Progress progress(!tool.is_quiet(), WaitingLine("listing " + path.text()));
  const auto entry = RequireEntry(device, path, "list " + path.text());
  if (!entry.is_folder) return {ReadRow(device, path, entry)};
  const bool everything_below = !options.files_only;
  auto files = options.service
                   ? SelectFiles(ListFilesByService(device, path), path, {everything_below, options.hidden})
                   : ListFiles(device, path, {everything_below, options.hidden});
  if (files.empty() && !options.service) CheckReadable(device, path);
  return Rows(files, path, !options.recursive);
}

std::string NameOf(const Row& row, const DevicePath& folder, const Options& options) {
  if (row.path == folder.text()) return row.path;
  if (!options.recursive) return row.path.substr(row.path.rfind('/') + 1);
  return row.path.substr(folder.IsRoot() ? 1 : folder.text().size() + 1);
}

std::string ToText(const Output& output, const std::vector<Row>& rows, const DevicePath& folder,
                   const Options& options) {
  Table table;
  for (const auto& row : rows) {
    std::string name = output.Shown(NameOf(row, folder, options));
    if (row.files_below > 0) name = output.Painted(Colour::kFolder, name) + "/";
    if (!options.details) {
      table.AddRow({name});
      continue;
    }
    table.AddRow(
        {SizeText(row.size), row.time, name,
         row.files_below > 0 ? output.Painted(Colour::kFaint, CountText(row.files_below, "file")) : ""});
  }
  return table.Text();
}

Json::Value ToJson(const std::vector<Row>& rows, const DevicePath& folder, const Options& options) {
  Json::Value list(Json::arrayValue);
  for (const auto& row : rows) {
    Json::Value& entry = list.append(Json::objectValue);
    entry["name"] = NameOf(row, folder, options);
    entry["path"] = row.path;
    entry["type"] = row.files_below > 0 ? "folder" : "file";
    entry["size"] = Json::UInt64(row.size);
    entry["time"] = row.time;
    if (row.seconds > 0) entry["utc"] = UtcTimeText(row.seconds);
    if (row.files_below > 0) entry["files"] = Json::UInt64(row.files_below);
  }
  return list;
}

void Run(Tool& tool, const Options& options) {
  const DevicePath& path = options.path;
  const auto rows = ReadRows(tool, tool.device(), path, options);
  if (options.json) {
    tool.output().WriteJson(ToJson(rows, path, options));
  } else {
    tool.output().Write(ToText(tool.output(), rows, path, options));
  }
  const auto is_lost = [](const Row& row) { return HasLostBytes(row.path); };
  WarnOfLostNames(static_cast<std::size_t>(std::count_if(rows.begin(), rows.end(), is_lost)));
}

}  // namespace

void AddLsCommand(Command& root) {
  AddCommand<Options>(root, {"ls", "List files and folders on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli

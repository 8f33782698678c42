// darokleim find
#include <darokleim.h>
#include <json/value.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/argument_text.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/device/file_listing.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/progress.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim find /sdcard jpg png         files whose names end in .jpg or .png, in any case
  darokleim find --json "/sdcard/my music" mp3
  darokleim find -0 /sdcard mp3 | xargs -0 -n 1 darokleim stat

Folders that adb is not allowed to search are skipped; if nothing was found and some were refused, that is an error. In
the results, bytes that are not UTF-8 are shown as U+FFFD.)";

// Of the library's command, and its words besides the serial number, folder and suffixes.
constexpr std::size_t kLongestCommand = 1023;
constexpr std::size_t kWords = sizeof " -s  shell find / -type f -and \\(  \\)";
constexpr std::size_t kWordsForASuffix = sizeof " -or -iname *.";
constexpr char kFind[] = "/system/bin/find";

// "*.jpg" and ".jpg" mean jpg. The library separates suffixes with semicolons.
struct Suffix {
  static constexpr ValueKind kKind = ValueKind::kText;
  static Suffix Parse(std::string word) {
    word.erase(0, word.find_first_not_of("*."));
    if (word.empty() || word.find_first_of(";/") != std::string::npos) {
      throw UsageError("\"" + word +
                       "\" is not a valid suffix: it must not be empty and must not contain ; or /.");
    }
    return {word};
  }
  std::string text;
};

struct Options {
  bool json = false;
  bool zeros = false;
  DevicePath folder;
  std::vector<Suffix> suffixes;
};

void Describe(Command& command, Options& options) {
  command.Positional("FOLDER", options.folder, "Where to search on the device").Required();
  command.Positional("SUFFIX", options.suffixes, "What names end in after a dot: jpg").Required();
  command.Flag("-0,--null", options.zeros, "End each path with a zero byte instead of a line break");
  command.JsonFlag(options.json, "an array of paths");
}

std::string Suffixes(const Device& device, const Options& options, const std::string& folder) {
  std::string list;
  std::size_t length = kWords + std::string_view(device.serial()).size() + folder.size();
  for (const auto& named : options.suffixes) {
    const std::string suffix = ForBarePlace(named.text);
    list += (list.empty() ? "" : ";") + suffix;
    length += kWordsForASuffix + suffix.size();
  }
  if (length > kLongestCommand) {
    throw ToolError("the folder and the suffixes are too long together: the library's command holds " +
                    std::to_string(kLongestCommand) + " bytes. Search for fewer suffixes at once.");
  }
  return list;
}

// Without find the library searches with a pattern that holds the texts as they are, including quotes.
void CheckWithoutFind(const Device& device, const DevicePath& folder, const std::string& suffixes) {
  const bool plain =
      ForBarePlace(folder.text()) == folder.text() && suffixes.find_first_of("'\\") == std::string::npos;
  if (plain || EntryExists(device, DevicePath(kFind))) return;
  throw ToolError(
      "cannot search " + folder.text() +
      ": this device does not have find, and without it the library cannot search for a folder or suffix "
      "with spaces or characters that are special to a shell. `darokleim ls -R` lists all files.");
}

std::vector<ListedFile> Search(const Tool& tool, const Device& device, const Options& options) {
  const DevicePath& path = options.folder;
  const std::string action = "search " + path.text();
  if (!RequireEntry(device, path, action).is_folder) {
    throw ToolError("cannot " + action + ": it is a file, not a folder.");
  }
  const std::string folder = ForBarePlace(path.text());
  const std::string suffixes = Suffixes(device, options, folder);
  CheckWithoutFind(device, path, suffixes);
  const Progress progress(!tool.is_quiet(), WaitingLine("searching " + path.text()));
  return FilesOf(ReadListing(device, action, [&](char** json, int* length) {
    return AdbGetFilesBySuffix(device.serial(), folder.c_str(), suffixes.c_str(), json, length,
                               device.cancel());
  }));
}

std::string ToText(const Output& output, const std::vector<ListedFile>& files, bool zeros) {
  std::string text;
  for (const auto& file : files) {
    text += zeros ? file.path : output.Shown(file.path);
    text += zeros ? '\0' : '\n';
  }
  return text;
}

Json::Value ToJson(const std::vector<ListedFile>& files) {
  Json::Value list(Json::arrayValue);
  for (const auto& file : files) list.append(file.path);
  return list;
}

void Run(Tool& tool, const Options& options) {
  const auto files = Search(tool, tool.device(), options);
  if (options.json) {
    tool.output().WriteJson(ToJson(files));
  } else {
    tool.output().Write(ToText(tool.output(), files, options.zeros));
  }
  const auto is_lost = [](const ListedFile& file) { return HasLostBytes(file.path); };
  WarnOfLostNames(static_cast<std::size_t>(std::count_if(files.begin(), files.end(), is_lost)));
}

}  // namespace

void AddFindCommand(Command& root) {
  AddCommand<Options>(root, {"find", "Find files on the device by the ends of their names", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli

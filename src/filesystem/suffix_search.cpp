// AdbGetFilesBySuffix: searches a directory with the device's find, or with du and grep on a device without find.
#include <cstddef>
#include <list>
#include <string>
#include <string_view>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/caller_output.h"
#include "src/core/text.h"
#include "src/filesystem/file_info.h"
#include "src/filesystem/file_list_json.h"
#include "src/filesystem/find_listing.h"
#include "src/platform/log_library.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// Deliberate: the line for an invalid parameter is the enter line again.
constexpr LogWording kSearchWording{kLogInfo, "%s Enter ...", "%s Leave ...", kLogInfo, "%s Enter ..."};

// Deliberate: the probe and the search with find are cut to this size, the search with du is not.
constexpr std::size_t kCommandSize = 1024;

// Calls append with each suffix of a list such as jpg;png, and whether it is the first.
template <typename Append>
void ForEachSuffix(const char* suffixes, Append append) {
  bool first = true;
  ForEachPiece(suffixes, ";", [&](std::string_view suffix) {
    append(suffix, first);
    first = false;
    return true;
  });
}

// -iname *.jpg -or -iname *.png
std::string FindCommand(const char* serial, const std::string& directory, const char* suffixes) {
  std::string names;
  ForEachSuffix(suffixes, [&](std::string_view suffix, bool first) {
    names.append(first ? "" : " -or ").append("-iname *.").append(suffix);
  });
  return Cut(kCommandSize, " -s %s shell find %s -type f -and \\( %s \\)", serial, directory.c_str(),
             names.c_str());
}

// /sdcard/.*\.jpg$|/sdcard/.*\.png$
std::string DuCommand(const char* serial, const std::string& directory, const char* suffixes) {
  std::string pattern;
  ForEachSuffix(suffixes, [&](std::string_view suffix, bool first) {
    pattern.append(first ? "" : "|").append(directory).append(".*\\.").append(suffix).append("$");
  });
  return Measured(" -s %s shell du -a %s | grep -oE -i \"'%s'\"", serial, directory.c_str(), pattern.c_str());
}

int AskForFind(const char* serial, const bool* cancel) {
  // The space at the end is part of the command.
  return AdbRun(Cut(kCommandSize, " -s %s shell ls /system/bin/find ", serial), cancel).Classify();
}

int Failed(const CallLog& log, int code, const std::string& directory) {
  LogEx(kLogModule, kLogInfo, "%s Execute Command Failed.Error = %d.Dir = %s", log.function(), code,
        directory.c_str());
  return code;
}

}  // namespace
}  // namespace darokleim::sdk

int AdbGetFilesBySuffix(const char* serial, const char* dir, const char* suffixes, char** json, int* json_len,
                        const bool* cancel) {
  *json = nullptr;
  *json_len = 0;
  CallLog log(__func__, kSearchWording);
  if (AnyNull(serial, dir) || *dir == '\0') return log.Leave(log.InvalidParam());
  std::string directory = dir;
  if (directory.back() != '/') directory += '/';

  const int probe = AskForFind(serial, cancel);
  if (probe != ADB_RESULT_OK && probe != ADB_RESULT_NO_SUCH_FILE) {
    return log.Leave(Failed(log, probe, directory));
  }
  const bool has_find = probe == ADB_RESULT_OK;
  int code = ADB_RESULT_OK;
  std::list<FileInfo> files;
  {
    const AdbRun run(
        has_find ? FindCommand(serial, directory, suffixes) : DuCommand(serial, directory, suffixes), cancel);
    code = run.Classify();
    if (code != ADB_RESULT_OK && code != ADB_RESULT_PERMISSION_DENIED) {
      return log.Leave(Failed(log, code, directory));
    }
    if (!DecodeFindOut(run.output().data(), static_cast<int>(run.output().size()), &files)) {
      return log.Leave(Failed(log, code, directory));
    }
  }  // The device's output is given back before a document of the same size is written.
  // Refused folders are an error only when no file was found elsewhere.
  if (!files.empty()) code = ADB_RESULT_OK;
  HandOutOnce(serialization_file_list(&files, false), &files, json, json_len);
  return log.Leave(code);
}

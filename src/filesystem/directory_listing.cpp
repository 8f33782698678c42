// AdbGetDirFiles, AdbGetDirFilesEx, AdbGetDirFilesAndDirs: the files of a directory as JSON.
#include <list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/caller_output.h"
#include "src/filesystem/adb_ls_listing.h"
#include "src/filesystem/file_info.h"
#include "src/filesystem/file_list_json.h"
#include "src/filesystem/ls_listing.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// No pointer is checked, so there is no line for an invalid parameter.
constexpr LogWording kListingWording{kLogInfo, "%s Enter ...", "%s Leave.", kLogError, nullptr};

// Lists all files below a directory, one folder after another, always the folder that was found last. Stops at the
// first failure. Returns the channel's status of the last listing; messages that adb prints are not errors here.
int ListAllBelow(const char* serial, const char* dir, const bool* cancel, std::list<FileInfo>* files) {
  std::vector<std::string> waiting;
  waiting.emplace_back(dir);  // an initializer list leaks in libc++ 14 when an allocation fails
  int status = ADB_RESULT_OK;
  while (status == ADB_RESULT_OK && !waiting.empty()) {
    const std::string directory = std::move(waiting.back());
    waiting.pop_back();
    const AdbRun run = RunAdbLs(serial, directory, cancel);
    status = run.status();
    if (!run.has_output()) continue;
    const std::string_view text = run.output();
    for (FileInfo& entry : DecodeADBLSOut(directory, text.data(), static_cast<int>(text.size()))) {
      if (CheckIsDir(entry.mode)) {
        waiting.push_back(std::move(entry.file));
      } else {
        files->push_back(std::move(entry));
      }
    }
  }
  return status;
}

}  // namespace
}  // namespace darokleim::sdk

int AdbGetDirFiles(const char* serial, const char* dir, char** json, int* json_len, int recursive, int all,
                   const bool* cancel) {
  CallLog log(__func__, kListingWording);
  std::list<FileInfo> files;
  {
    // The spaces around an absent flag are part of the command.
    const AdbRun run(
        Measured(" -s %s shell ls -l %s %s \"\"%s\"\"", serial, recursive ? "-R" : "", all ? "-a" : "", dir),
        cancel);
    const int code = run.Classify();
    if (!run.has_output() || code != ADB_RESULT_OK) return log.Leave(code);
    DecodeLSOut(run.output().data(), static_cast<int>(run.output().size()), &files);
  }  // The device's output is given back before a document of the same size is written.
  HandOutOnce(serialization_file_list(&files, true), &files, json, json_len);
  return log.Leave(ADB_RESULT_OK);
}

// recursive and all have no effect here and below: adb ls has no options, and every folder is listed.
int AdbGetDirFilesEx(const char* serial, const char* dir, char** json, int* json_len, int /*recursive*/,
                     int /*all*/, const bool* cancel) {
  CallLog log(__func__, kListingWording);
  std::list<FileInfo> files;
  const int status = ListAllBelow(serial, dir, cancel, &files);
  if (status == ADB_RESULT_OK) HandOutOnce(serialization_file_list(&files, true), &files, json, json_len);
  return log.Leave(status);
}

int AdbGetDirFilesAndDirs(const char* serial, const char* dir, char** json, int* json_len, int /*recursive*/,
                          int /*all*/, const bool* cancel) {
  CallLog log(__func__, kListingWording);
  std::list<FileInfo> files;
  const int status = ListAllBelow(serial, dir, cancel, &files);
  if (status == ADB_RESULT_OK) {
    HandOutOnce(serialization_file_list_keep_folder_structer(&files, dir, true), &files, json, json_len);
  }
  return log.Leave(status);
}

// AdbCheckFileExisted and its fallback: is a path there?
#include <string>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/string_helper.h"
#include "src/core/text.h"
#include "src/filesystem/adb_ls_listing.h"
#include "src/filesystem/adb_ls_run.h"
#include "src/filesystem/device_path.h"

namespace darokleim::sdk {
namespace {

constexpr LogWording kExistenceWording{kLogInfo, nullptr, nullptr, kLogError, "%s, invalid param."};
constexpr LogWording kFallbackWording{kLogInfo, "%s Enter ...", "%s Leave.", kLogError, nullptr};

// Whether a listing that succeeded shows the path. Old phones escape the blanks in names; an empty directory
// lists nothing at all.
bool ListingShows(std::string_view listing, const char* path) {
  std::string escaped = path;
  replace(escaped, " ", "\\ ");
  return listing.empty() || Contains(listing, path) || Contains(listing, escaped);
}

}  // namespace
}  // namespace darokleim::sdk

int AdbCheckFileExisted(const char* serial, const char* device_path, bool* exists, const bool* cancel) {
  using namespace darokleim::sdk;
  const CallLog log("AdbCheckFileExisted", kExistenceWording);
  if (AnyNull(serial, device_path) || AnyNull(exists)) return log.InvalidParam();
  *exists = false;
  const AdbRun run(Measured(" -s %s shell ls \"\"%s\"\"", serial, device_path), cancel);
  if (!run.has_output()) {
    // Deliberate: a command that printed nothing did not complain.
    *exists = true;
    return run.status();
  }
  const int code = run.Classify();
  const bool missing = code == ADB_RESULT_NO_SUCH_FILE || code == ADB_RESULT_NO_CLOSING_QUOTE;
  if (code != ADB_RESULT_OK && !missing) return code;
  *exists = !missing && ListingShows(run.output(), device_path);
  // The shell may have misread the path: adb's own listing has the last word.
  if (!*exists) AdbCheckFileExistedUsingFolderContent(serial, device_path, exists, cancel);
  return ADB_RESULT_OK;
}

int AdbCheckFileExistedUsingFolderContent(const char* serial, const char* device_path, bool* exists,
                                          const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbCheckFileExistedUsingFolderContent", kFallbackWording);
  const auto path = SplitAtLastSlash(device_path);
  if (!path) return ADB_RESULT_OK;
  const AdbRun run = RunAdbLs(serial, path->parent, cancel);
  for (const FileInfo& entry : DecodeADBLSOut(std::string(path->parent), run.output().data(),
                                              static_cast<int>(run.output().size()))) {
    if (entry.file != device_path) continue;
    *exists = true;
    break;
  }
  return log.Leave(run.status());
}

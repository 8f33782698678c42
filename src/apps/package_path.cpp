// AdbGetApkPathOfInstatlled, AdbGetApkPathOfInstatlledEx: where the APK files of a package are.
#include <json/value.h>

#include <string>
#include <string_view>

#include "darokleim.h"
#include "src/apps/package_output.h"
#include "src/apps/unchecked_buffer.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/handed_out.h"
#include "src/core/text.h"
#include "src/filesystem/json_text.h"

namespace darokleim::sdk {
namespace {

AdbRun RunPmPath(const char* serial, const char* package, const bool* cancel) {
  return AdbRun(Cut(256, " -s %s shell pm path %s", serial, package), cancel);
}

}  // namespace
}  // namespace darokleim::sdk

int AdbGetApkPathOfInstatlled(const char* serial, const char* package, char* buffer, int /*buffer_size*/,
                              const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbGetApkPathOfInstatlled");
  if (AnyNull(serial, package, buffer)) return log.InvalidParam();
  buffer[0] = '\0';
  const AdbRun run = RunPmPath(serial, package, cancel);
  const int code = run.Classify();
  if (!run.has_output() || code != ADB_RESULT_OK) return log.Leave(code);
  return log.Leave(FillWithFirstFound(run.output(), MatchPackageLine, buffer));
}

// Deliberate: whatever the device answered, the caller gets a document, and every failure is "not found".
int AdbGetApkPathOfInstatlledEx(const char* serial, const char* package, char** json, int* json_len,
                                const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbGetApkPathOfInstatlledEx");
  if (AnyNull(serial, package)) return log.InvalidParam();
  const AdbRun run = RunPmPath(serial, package, cancel);
  const int code = run.Classify();
  if (!run.has_output()) return log.Leave(code);
  Json::Value document;
  Json::Value& paths = document["path"];
  if (code == ADB_RESULT_OK) {
    ForEachPiece(run.output(), "\n", [&](std::string_view line) {
      if (const auto path = MatchPackageLine(line)) paths.append(std::string(*path));
      return true;
    });
  }
  const std::string text = JsonToString(document);
  // Here the terminating zero is part of the length.
  HandOut({text.c_str(), text.size() + 1}, json, json_len);
  return log.Leave(paths.isNull() ? ADB_RESULT_NOT_FOUND : ADB_RESULT_OK);
}

// AdbGetAppVersion, AdbGetApkPathOfInstatlled, AdbGetApkPathOfInstatlledEx: version and files of one package.
#include <json/value.h>

#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "darokleim.h"
#include "src/apps/package_output.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/caller_output.h"
#include "src/core/classifier.h"
#include "src/core/text.h"
#include "src/filesystem/json_text.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// The size of the buffers that callers of these functions must provide, whatever size they pass: the longest path of a
// device and its terminating zero.
constexpr std::size_t kPromisedCapacity = 4096;

// Writes the text and a terminating zero, at most kPromisedCapacity bytes: the author of an application chooses the
// text. After a zero byte in the text only zeros follow.
int FillPromisedBuffer(std::string_view text, char* buffer) {
  const std::string_view fitting = text.substr(0, kPromisedCapacity - 1);
  std::strncpy(buffer, fitting.data(), fitting.size());
  buffer[fitting.size()] = '\0';
  return fitting.size() == text.size() ? ADB_RESULT_OK : ADB_RESULT_BUFFER_TOO_SMALL;
}

// Writes what find returns for the first line with a result. Returns ADB_RESULT_OK, ADB_RESULT_BUFFER_TOO_SMALL for a
// result that was cut, or ADB_RESULT_NOT_FOUND, with the buffer untouched, when no line has one.
template <typename Find>
int FillWithFirstFound(std::string_view output, Find find, char* buffer) {
  int code = ADB_RESULT_NOT_FOUND;
  ForEachPiece(output, "\n", [&](std::string_view line) {
    const std::optional<std::string_view> found = find(line);
    if (!found) return true;
    code = FillPromisedBuffer(*found, buffer);
    return false;
  });
  return code;
}

AdbRun RunPmPath(const char* serial, const char* package, const bool* cancel) {
  return AdbRun(Cut(256, " -s %s shell pm path %s", serial, package), cancel);
}

}  // namespace
}  // namespace darokleim::sdk

int AdbGetAppVersion(const char* serial, const char* package, char* buffer, int /*buffer_size*/,
                     const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, package, buffer)) return log.InvalidParam();
  buffer[0] = '\0';
  // The space at the end is part of the command.
  const AdbRun run(Cut(256, " -s %s shell dumpsys package %s ", serial, package), cancel);
  if (!run.has_output()) return log.Leave(run.status());
  // Dumps hold the word "Failure" for other reasons.
  constexpr bool kLineFailureOnly = true;
  const int code = Classify(run.output(), run.status(), kLineFailureOnly);
  if (code != ADB_RESULT_OK) return log.Leave(code);
  return log.Leave(FillWithFirstFound(run.output(), FindVersion, buffer));
}

int AdbGetApkPathOfInstatlled(const char* serial, const char* package, char* buffer, int /*buffer_size*/,
                              const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, package, buffer)) return log.InvalidParam();
  buffer[0] = '\0';
  const AdbRun run = RunPmPath(serial, package, cancel);
  const int code = run.Classify();
  if (!run.has_output() || code != ADB_RESULT_OK) return log.Leave(code);
  return log.Leave(FillWithFirstFound(run.output(), MatchPackageLine, buffer));
}

// Deliberate: the caller gets a document whatever the device printed, and every failure is "not found".
int AdbGetApkPathOfInstatlledEx(const char* serial, const char* package, char** json, int* json_len,
                                const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, package)) return log.InvalidParam();
  Json::Value document;
  Json::Value& paths = document["path"];
  {
    const AdbRun run = RunPmPath(serial, package, cancel);
    const int code = run.Classify();
    if (!run.has_output()) return log.Leave(code);
    if (code == ADB_RESULT_OK) {
      ForEachPiece(run.output(), "\n", [&](std::string_view line) {
        if (const auto path = MatchPackageLine(line)) paths.append(std::string(*path));
        return true;
      });
    }
  }
  const int code = paths.isNull() ? ADB_RESULT_NOT_FOUND : ADB_RESULT_OK;
  const std::string text = JsonToString(document);
  document.clear();  // before the text is copied
  // In this function the length includes the terminating zero.
  HandOut({text.c_str(), text.size() + 1}, json, json_len);
  return log.Leave(code);
}

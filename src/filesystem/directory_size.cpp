// AdbGetDirSize: the size of a directory as the device's du prints it.
#include <string_view>
#include <vector>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/text.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// du prints two pieces separated by a tab, a size and a path. Fewer pieces: no size. More pieces: du also printed
// why the size is incomplete.
int ReadDuOutput(std::string_view output, long long* size) {
  std::vector<std::string_view> pieces;
  ForEachPiece(output, "\t", [&](std::string_view piece) {
    pieces.push_back(piece);
    return true;
  });
  if (pieces.size() != 2) return ADB_RESULT_PROTOCOL_FAULT;
  *size = LeadingInteger(pieces.front());
  return ADB_RESULT_OK;
}

}  // namespace
}  // namespace darokleim::sdk

int AdbGetDirSize(const char* serial, const char* dir, long long* size, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, dir, size)) return log.InvalidParam();
  *size = 0;
  const int busybox = AdbConfigDeviceBusybox(serial, cancel);
  // Deliberately without a leave line: the failed step has written its own.
  if (busybox != ADB_RESULT_OK) return busybox;
  const AdbRun run(Measured(" -s %s shell du -s \"\"%s\"\"", serial, dir), cancel);
  const int code = run.Classify();
  if (!run.has_output() || code != ADB_RESULT_OK) return log.Leave(code);
  return log.Leave(ReadDuOutput(run.output(), size));
}

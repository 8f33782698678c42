// AdbGetDirSize: what the device's du says of a directory.
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

// The first of the two pieces between tabs that du prints, a size and a path. With fewer there is no size, with
// more du also printed why it is not the whole one.
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
  // Deliberately without a leave line: the failed step's own is the last one.
  if (busybox != ADB_RESULT_OK) return busybox;
  const AdbRun run(Measured(" -s %s shell du -s \"\"%s\"\"", serial, dir), cancel);
  const int code = run.Classify();
  if (!run.has_output() || code != ADB_RESULT_OK) return log.Leave(code);
  return log.Leave(ReadDuOutput(run.output(), size));
}

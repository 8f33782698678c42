#include "src/apps/error_word.h"

#include <string_view>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/text.h"
#include "src/platform/log_library.h"

namespace darokleim::sdk {
namespace {

// What printf prints for a null text; not every C library accepts one.
constexpr std::string_view kNoText = "(null)";

bool Failed(const AdbRun& run, SilenceMeans silence_means) {
  return run.has_output() ? Contains(run.output(), "Error") : silence_means == SilenceMeans::kFailure;
}

}  // namespace

int RunLookingForError(const CallLog& log, const std::string& args, SilenceMeans silence_means) {
  const bool never_cancelled = false;
  const AdbRun run(args, &never_cancelled);
  if (run.status() != 0) {
    LogEx(kLogModule, kLogError, "%s Execute Command Failed. Error = %d", log.function(), run.status());
    return run.status();
  }
  if (!Failed(run, silence_means)) return ADB_RESULT_OK;
  const std::string_view text = run.has_output() ? run.output() : kNoText;
  LogEx(kLogModule, kLogError, "%s Execute Command Failed. Output = %.*s", log.function(),
        PrintedLength(text), text.data());
  return ADB_RESULT_PROTOCOL_FAULT;
}

}  // namespace darokleim::sdk

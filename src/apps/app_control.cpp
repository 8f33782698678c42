// AdbStartApp, AdbInputStringToDevice: starting an activity and typing a text.
#include "darokleim.h"
#include "src/apps/error_word.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

constexpr LogWording kStartWording{kLogInfo, "%s Enter ...", "%s Leave %d.", kLogError,
                                   "%s Param is Invalid"};

}  // namespace
}  // namespace darokleim::sdk

int AdbStartApp(const char* serial, const char* component, const char* extras) {
  CallLog log(__func__, kStartWording);
  if (AnyNull(serial, component)) return log.Leave(log.InvalidParam());
  // Without the leading space of other commands: part of the interface to the channel.
  const auto args = extras ? Cut(512, "-s %s shell am start -n %s %s", serial, component, extras)
                           : Cut(512, "-s %s shell am start -n %s", serial, component);
  return log.Leave(RunLookingForError(log, args, SilenceMeans::kFailure));
}

// Nothing is escaped: the device's shell splits the text, as applications expect.
int AdbInputStringToDevice(const char* serial, const char* text, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, text)) return log.InvalidParam();
  return log.Leave(AdbRun(Measured(" -s %s shell input text \"%s\"", serial, text), cancel).Classify());
}

// AdbFowardBind, AdbFowardRemove, AdbReverseBind, AdbReverseRemove: TCP ports between host and device.
#include <algorithm>
#include <initializer_list>
#include <string>

#include "darokleim.h"
#include "src/apps/error_word.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/platform/log_library.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// The two directions differ on purpose, down to a space at the end of one enter line: applications and log readers
// rely on it.
constexpr LogWording kForwardWording{kLogInfo, "%s Enter ...", "%s Leave ...", kLogError,
                                     "%s Param is Invalid"};
constexpr LogWording kReverseWording{kLogInfo, "%s Enter ...", "%s Leave %d.", kLogError,
                                     "%s Param is Invalid"};
constexpr LogWording kReverseRemoveWording{kLogInfo, "%s Enter ... ", "%s Leave %d.", kLogError,
                                           "%s Param is Invalid"};

struct Direction {
  bool echoes_command;
  SilenceMeans silence_means;
};
constexpr Direction kForward{false, SilenceMeans::kFailure};
constexpr Direction kReverse{true, SilenceMeans::kSuccess};

// The port that listens is the first one.
int ChangeMapping(CallLog log, const Direction& direction, const char* command, const char* serial,
                  std::initializer_list<const char*> ports) {
  const bool lacks_port = std::find(ports.begin(), ports.end(), nullptr) != ports.end();
  if (AnyNull(serial) || lacks_port) return log.Leave(log.InvalidParam());
  // Without the leading space of other commands: part of the interface to the channel.
  std::string args = Measured("-s %s %s", serial, command);
  for (const char* const port : ports) args.append(" tcp:").append(port);
  if (direction.echoes_command) LogEx(kLogModule, kLogCommand, "adb %s", args.c_str());
  return log.Leave(RunLookingForError(log, Cut(512, "%s", args.c_str()), direction.silence_means));
}

}  // namespace
}  // namespace darokleim::sdk

int AdbFowardBind(const char* serial, const char* host_port, const char* device_port) {
  return ChangeMapping(CallLog(__func__, kForwardWording), kForward, "forward", serial,
                       {host_port, device_port});
}

int AdbFowardRemove(const char* serial, const char* host_port) {
  return ChangeMapping(CallLog(__func__, kForwardWording), kForward, "forward --remove", serial, {host_port});
}

int AdbReverseBind(const char* serial, const char* device_port, const char* host_port) {
  return ChangeMapping(CallLog(__func__, kReverseWording), kReverse, "reverse", serial,
                       {device_port, host_port});
}

int AdbReverseRemove(const char* serial, const char* device_port) {
  return ChangeMapping(CallLog(__func__, kReverseRemoveWording), kReverse, "reverse --remove", serial,
                       {device_port});
}

#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_DEVICE_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_DEVICE_H

#include <string>
#include <utility>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/device/session.h"

namespace darokleim::cli {

// The device that a command works with. The session must outlive it.
class Device {
 public:
  Device(const Session& session, std::string serial) : session_(&session), serial_(std::move(serial)) {}

  // For the library's calls.
  const char* serial() const { return serial_.c_str(); }
  const bool* cancel() const { return CancelFlag(); }

  // As Session::Check. The message says when the device is absent or not ready, even where the code does not.
  void Check(int code, const std::string& action) const;

 private:
  void CheckState(const std::string& action) const;

  const Session* session_;
  std::string serial_;
};

// The named one; without a name, that of ANDROID_SERIAL; without that, the only usable one. Throws ToolError, with the
// list of devices, when none or several are usable.
Device ChooseDevice(const Session& session, const Serial& named);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_DEVICE_H

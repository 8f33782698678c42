#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_H

#include <string>
#include <utility>

#include "tools/cli/session.h"

namespace darokleim::cli {

// The device that a command works with. The session must outlive it.
class Device {
 public:
  Device(const Session& session, std::string serial) : session_(&session), serial_(std::move(serial)) {}

  // For the library's calls.
  const char* serial() const { return serial_.c_str(); }
  const bool* cancel() const { return may_be_cancelled_ ? session_->cancel() : nullptr; }

  // The same device for what has to be done after Ctrl-C, too.
  Device ForCleaningUp() const;

  // As Session::Check. Where the code does not tell that the device is absent or not ready, the message does.
  void Check(int code, const std::string& action) const;

 private:
  void CheckState(const std::string& action) const;

  const Session* session_;
  std::string serial_;
  bool may_be_cancelled_ = true;
};

// The named one; without a name that of ANDROID_SERIAL; without that the only usable one. Throws ToolError, with
// the list of devices, when that does not tell which.
Device ChooseDevice(const Session& session, const std::string& named);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_H

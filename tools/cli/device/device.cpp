#include "tools/cli/device/device.h"

#include <stdlib.h>

#include <algorithm>
#include <vector>

#include "base/ascii.h"
#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/connection/device_table.h"
#include "tools/cli/device/device_list.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/result_text.h"

namespace darokleim::cli {
namespace {

constexpr char kHowToName[] = "Name one with -s SERIAL or in ANDROID_SERIAL.";
constexpr char kUnlisted[] = "Emulators and devices reached over the network are not listed: name them.";

// Whether the library lists devices with such serial numbers.
bool IsListed(const std::string& serial) {
  return std::all_of(serial.begin(), serial.end(), base::IsAsciiLetterOrDigit);
}

std::string TheOnlyUsable(const Session& session) {
  const auto devices = ListDevices(session);
  if (devices.empty()) {
    throw ToolError(std::string(kNoDeviceAdvice) + "\n" + kUnlisted + " " + kHowToName);
  }
  const auto usable = std::count_if(devices.begin(), devices.end(), IsUsable);
  if (usable == 1) return std::find_if(devices.begin(), devices.end(), IsUsable)->serial;
  if (usable == 0) throw ToolError("no attached device is ready:\n" + DeviceTable(devices) + kUnlisted);
  throw ToolError("several devices are attached. " + std::string(kHowToName) + "\n" + DeviceTable(devices));
}

}  // namespace

void Device::Check(int code, const std::string& action) const {
  if (IsExitStatus(code) && !IsCancelled()) CheckState(action);
  session_->CheckCancelled(action);
  session_->CheckCode(code, action);
}

void Device::CheckState(const std::string& action) const {
  if (!IsListed(serial_)) return;
  const auto devices = ListDevices(*session_);
  const auto found = std::find_if(devices.begin(), devices.end(),
                                  [this](const AttachedDevice& device) { return device.serial == serial_; });
  if (found == devices.end()) {
    throw ToolError("cannot " + action + ": the device " + serial_ +
                    " is not attached. See `darokleim devices`.");
  }
  if (!IsUsable(*found)) {
    throw ToolError("cannot " + action + ": the device " + serial_ + " is " + found->state + ". " +
                    AdviceForState(found->state));
  }
}

Device ChooseDevice(const Session& session, const Serial& named) {
  if (!named.text.empty()) return {session, named.text};
  const char* from_environment = getenv("ANDROID_SERIAL");
  if (from_environment != nullptr && *from_environment != '\0') {
    if (!IsSerial(from_environment)) {
      throw ToolError("ANDROID_SERIAL is \"" + std::string(from_environment) +
                      "\", which is not a valid serial number. See `darokleim devices`.");
    }
    return {session, from_environment};
  }
  return {session, TheOnlyUsable(session)};
}

}  // namespace darokleim::cli

// darokleim authorize, reconnect, reboot
#include <darokleim.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/connection/device_table.h"
#include "tools/cli/device/device_list.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kAuthorizeFooter[] =
    R"(A phone that does not trust this computer is listed as "unauthorized". This command makes it ask its user again and
waits for the answer: unlock it and allow USB debugging. Without -s: the only unauthorized device.

Examples:
  darokleim authorize
  darokleim -s 0123456789ABCDEF authorize --wait 0    only ask)";

constexpr char kReconnectFooter[] =
    R"(For a device that does not respond. adb itself picks the device, or refuses when several are attached; `darokleim
authorize` does the same to a named one. Some versions of adb do not report that there is none.

Examples:
  darokleim reconnect)";

constexpr char kRebootFooter[] = R"(Does not wait until the device is back; that takes about a minute.

Examples:
  darokleim reboot
  darokleim -s 0123456789ABCDEF reboot)";

constexpr auto kLookAgain = std::chrono::milliseconds(200);

struct Options {
  int wait_seconds = 60;
};

void Describe(Command& command, Options& options) {
  command.Option("-w,--wait", options.wait_seconds, "How long to wait for the answer; 0: not at all")
      .Called("SECONDS")
      .Between(0, 86400)
      .Default(std::to_string(options.wait_seconds));
}

bool IsUnauthorized(const AttachedDevice& device) {
  return device.state == "unauthorized";
}

// The shared choice takes the only device that is ready, which this command is not for.
Device ChooseUnauthorized(Tool& tool) {
  const auto& session = tool.session();
  const char* from_environment = getenv("ANDROID_SERIAL");
  const bool is_named = !tool.session_options().serial.text.empty() ||
                        (from_environment != nullptr && *from_environment != '\0');
  if (is_named) return ChooseDevice(session, tool.session_options().serial);
  const auto devices = ListDevices(session);
  const auto count = std::count_if(devices.begin(), devices.end(), IsUnauthorized);
  if (count == 1) return {session, std::find_if(devices.begin(), devices.end(), IsUnauthorized)->serial};
  if (devices.empty()) throw ToolError(kNoDeviceAdvice);
  throw ToolError((count == 0 ? "no attached device is unauthorized:\n"
                              : "several devices are unauthorized. Name one with -s SERIAL.\n") +
                  DeviceTable(devices));
}

// Empty while the device is not listed, as for a moment after it was asked.
std::string StateOf(const Session& session, const std::string& serial) {
  const auto devices = ListDevices(session);
  const auto found = std::find_if(devices.begin(), devices.end(), [&serial](const AttachedDevice& device) {
    return device.serial == serial;
  });
  return found == devices.end() ? "" : found->state;
}

void WaitUntilReady(const Session& session, const std::string& serial, int seconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  while (StateOf(session, serial) != "device") {
    if (std::chrono::steady_clock::now() > end) {
      throw ToolError("USB debugging was not allowed on " + serial + " within " + std::to_string(seconds) +
                      " s. Unlock it and allow USB debugging on its screen.");
    }
    std::this_thread::sleep_for(kLookAgain);
  }
}

void RunAuthorize(Tool& tool, const Options& options) {
  const Device device = ChooseUnauthorized(tool);
  if (StateOf(tool.session(), device.serial()) == "device") {
    tool.Report(std::string(device.serial()) + " is ready.");
    return;
  }
  const int code = AdbAuthenticateShow(device.serial(), device.cancel());
  // 1 means that the request was made.
  device.Check(code == ADB_RESULT_PROTOCOL_FAULT ? ADB_RESULT_OK : code, "make the device ask its user");
  tool.Report("Allow USB debugging on the screen of " + std::string(device.serial()) + ".");
  if (options.wait_seconds == 0) return;
  WaitUntilReady(tool.session(), device.serial(), options.wait_seconds);
  tool.Report(std::string(device.serial()) + " is ready.");
}

void RunReconnect(Tool& tool) {
  const auto& session = tool.session();
  session.Check(WithoutFlag([&] { return AdbReconnectDevice(); }), "reconnect");
  tool.Report("adb was asked to reconnect. See `darokleim devices`.");
}

void RunReboot(Tool& tool) {
  const auto& device = tool.device();
  device.Check(AdbReboot(device.serial(), device.cancel()), "restart the device");
  tool.Report(std::string(device.serial()) + " is restarting.");
}

}  // namespace

void AddAuthorizeCommand(Command& root) {
  AddCommand<Options>(root,
                      {"authorize", "Make a device ask whether to trust this computer", kAuthorizeFooter},
                      Describe, RunAuthorize);
}

void AddReconnectCommand(Command& root) {
  AddCommand(root, {"reconnect", "Reconnect to the attached device", kReconnectFooter}, RunReconnect);
}

void AddRebootCommand(Command& root) {
  AddCommand(root, {"reboot", "Restart the device", kRebootFooter}, RunReboot);
}

}  // namespace darokleim::cli

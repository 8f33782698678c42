// darokleim authorize
#include <darokleim.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device_list.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(A phone that does not trust this computer shows as "unauthorized". This makes it ask its user again, and waits for
the answer: unlock it and allow USB debugging. Without -s: the only unauthorized device.

Examples:
  darokleim authorize
  darokleim -s 0123456789ABCDEF authorize --wait 0    ask only)";

constexpr auto kLookAgain = std::chrono::milliseconds(200);

struct Options {
  int wait_seconds = 60;
};

void Describe(CLI::App& command, Options& options) {
  command.add_option("-w,--wait", options.wait_seconds, "How long to wait for the answer; 0: not at all")
      ->type_name("SECONDS")
      ->capture_default_str()
      ->check(CLI::Range(0, 86400));
}

bool IsUnauthorized(const AttachedDevice& device) {
  return device.state == "unauthorized";
}

// The shared choice takes the only device that is ready, which this command is not for.
Device ChooseUnauthorized(Tool& tool) {
  const auto& session = tool.session();
  const char* from_environment = getenv("ANDROID_SERIAL");
  const bool is_named =
      !tool.session_options().serial.empty() || (from_environment != nullptr && *from_environment != '\0');
  if (is_named) return ChooseDevice(session, tool.session_options().serial);
  const auto devices = ListDevices(session);
  const auto count = std::count_if(devices.begin(), devices.end(), IsUnauthorized);
  if (count == 1) return {session, std::find_if(devices.begin(), devices.end(), IsUnauthorized)->serial};
  if (devices.empty()) throw ToolError(kNoDeviceAdvice);
  throw ToolError((count == 0 ? "no attached device is unauthorized:\n"
                              : "several devices are unauthorized. Name one with -s SERIAL.\n") +
                  DeviceTable(devices));
}

// Empty while the device is away, as it is for a moment after it was asked.
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
      throw ToolError(serial + " was not allowed to trust this computer within " + std::to_string(seconds) +
                      " s. Unlock it and allow USB debugging on its screen.");
    }
    std::this_thread::sleep_for(kLookAgain);
  }
}

void Run(Tool& tool, const Options& options) {
  const Device device = ChooseUnauthorized(tool);
  const int code = AdbAuthenticateShow(device.serial(), device.cancel());
  // 1 stands for a request that was made.
  device.Check(code == ADB_RESULT_PROTOCOL_FAULT ? ADB_RESULT_OK : code, "ask the device for its trust");
  tool.Report("Allow USB debugging on the screen of " + std::string(device.serial()) + ".");
  if (options.wait_seconds == 0) return;
  WaitUntilReady(tool.session(), device.serial(), options.wait_seconds);
  tool.Report(std::string(device.serial()) + " is ready.");
}

}  // namespace

void AddAuthorizeCommand(CLI::App& app, Tool& tool) {
  AddCommand<Options>(app, tool, {"authorize", "Make a device ask whether to trust this computer", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli

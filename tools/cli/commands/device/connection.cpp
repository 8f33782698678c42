// darokleim wait, connect, disconnect, pair, authorize, reconnect, reboot
#include <stdlib.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/connection/device_table.h"
#include "tools/cli/errors.h"
#include "tools/cli/event_queue.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

using Devices = std::vector<dk::DeviceInfo>;

// The named device, or that of ANDROID_SERIAL; empty when neither is there.
std::string NamedSerial(Tool& tool) {
  const char* const from_environment = getenv("ANDROID_SERIAL");
  const bool has_environment = from_environment != nullptr && *from_environment != '\0';
  const bool is_named = !tool.global_options().serial.text.empty() || has_environment;
  return is_named ? tool.phone().serial() : "";
}

// wait

constexpr char kWaitFooter[] =
    R"(Waits for the named device, or otherwise for any, without a limit unless --timeout sets one.

Examples:
  darokleim wait                        until a device is ready
  darokleim -s R58M123ABC wait --timeout 60
  darokleim reboot recovery && darokleim wait recovery)";

struct StateWord {
  const char* word;
  dk_state state;
};

constexpr std::array<StateWord, 7> kStates = {{{"device", DK_STATE_READY},
                                               {"recovery", DK_STATE_RECOVERY},
                                               {"sideload", DK_STATE_SIDELOAD},
                                               {"bootloader", DK_STATE_BOOTLOADER},
                                               {"rescue", DK_STATE_RESCUE},
                                               {"unauthorized", DK_STATE_UNAUTHORIZED},
                                               {"offline", DK_STATE_OFFLINE}}};

struct WaitOptions {
  std::string state = "device";
};

void DescribeWait(Command& command, WaitOptions& options) {
  std::vector<std::string> words;
  words.reserve(kStates.size());
  for (const auto& state : kStates) words.emplace_back(state.word);
  command.Positional("STATE", options.state, "The state to wait for").OneOf(words).Default(options.state);
}

// The serial of the first device that is, or comes, into the state.
std::string AwaitState(Tool& tool, const std::string& serial, dk_state state) {
  EventQueue<dk::DeviceInfo> changes;
  const auto on_change = [&changes](dk_change change, const dk::DeviceInfo* device) {
    if (device != nullptr && change != DK_DEVICE_REMOVED) changes.Push(*device);
  };
  const dk::Watch watch = tool.client().watch(on_change, tool.limits()).value();
  for (;;) {
    const auto device = changes.Pop();
    if (device->state == state && (serial.empty() || device->serial == serial)) return device->serial;
  }
}

void RunWait(Tool& tool, const WaitOptions& options) {
  const auto wanted = std::find_if(kStates.begin(), kStates.end(), [&options](const StateWord& state) {
    return options.state == state.word;
  });
  const std::string serial = AwaitState(tool, NamedSerial(tool), wanted->state);
  if (tool.is_json()) {
    tool.document().Member("serial", JsonString(serial));
    tool.document().Member("state", JsonString(options.state));
  }
  tool.Report(serial +
              (options.state == "device" ? " is ready." : " is in the state " + options.state + "."));
}

// connect, disconnect, pair

constexpr char kConnectFooter[] =
    R"(Connects to a device over the network; port 5555 unless the address names one.

Examples:
  darokleim connect 192.168.1.5
  darokleim connect 192.168.1.5:37123 phone.local)";

constexpr char kDisconnectFooter[] = R"(Examples:
  darokleim disconnect 192.168.1.5:5555
  darokleim disconnect --all                every device of the network)";

constexpr char kPairFooter[] =
    R"(Phones with Android 11 or later show an address and a code of six digits in their developer options, under wireless
debugging. Without CODE it is read from standard input. Connect afterwards: the phone shows another address for that.

Examples:
  darokleim pair 192.168.1.5:41231 123456
  darokleim connect 192.168.1.5:37123)";

struct Addresses {
  std::vector<std::string> addresses;
  bool all = false;
};

void DescribeConnect(Command& command, Addresses& options) {
  command.Positional("ADDRESS", options.addresses, "HOST or HOST:PORT").Required();
}

void RunConnect(Tool& tool, const Addresses& options) {
  if (tool.is_json()) tool.document().BeginList("connected");
  tool.ForEach(options.addresses, [&tool](const std::string& address) {
    tool.client().connect(address, tool.limits()).value();
    if (tool.is_json()) tool.document().Add(JsonString(address));
    tool.Report("Connected to " + address + ".");
  });
}

void DescribeDisconnect(Command& command, Addresses& options) {
  auto& addresses = command.Positional("ADDRESS", options.addresses, "HOST or HOST:PORT");
  command.Flag("--all", options.all, "Every device of the network").Excludes(addresses);
}

std::vector<std::string> NetworkAddresses(Tool& tool) {
  std::vector<std::string> addresses;
  for (const auto& device : tool.client().devices(tool.limits()).value()) {
    if (device.link == DK_LINK_NETWORK) addresses.push_back(device.serial);
  }
  return addresses;
}

void RunDisconnect(Tool& tool, const Addresses& options) {
  if (options.addresses.empty() && !options.all) throw UsageError("ADDRESS or --all is required.");
  if (tool.is_json()) tool.document().BeginList("disconnected");
  tool.ForEach(options.all ? NetworkAddresses(tool) : options.addresses, [&tool](const std::string& address) {
    tool.client().disconnect(address, tool.limits()).value();
    if (tool.is_json()) tool.document().Add(JsonString(address));
    tool.Report("Disconnected " + address + ".");
  });
}

struct PairOptions {
  std::string address;
  std::string code;
};

void DescribePair(Command& command, PairOptions& options) {
  command.Positional("ADDRESS", options.address, "HOST:PORT, as the phone shows it").Required();
  command.Positional("CODE", options.code, "The code that the phone shows");
}

std::string ReadCode() {
  std::cerr << "Code that the phone shows: " << std::flush;
  std::string code;
  std::getline(std::cin, code);
  CheckCancelled();
  return code;
}

void RunPair(Tool& tool, const PairOptions& options) {
  const std::string code = options.code.empty() ? ReadCode() : options.code;
  if (code.empty()) throw UsageError("the code that the phone shows is required.");
  tool.client().pair(options.address, code, tool.limits()).value();
  if (tool.is_json()) tool.document().Member("paired", JsonString(options.address));
  tool.Report("Paired with " + options.address +
              ". Now connect to the address that the phone shows for that.");
}

// authorize, reconnect

constexpr char kAuthorizeFooter[] =
    R"(A phone that does not trust this computer is listed as "unauthorized". This command makes it ask its user again and
waits for the answer: unlock it and allow USB debugging. Without -s: the only unauthorized device.

Examples:
  darokleim authorize
  darokleim -s 0123456789ABCDEF authorize --wait 0    only ask)";

constexpr char kReconnectFooter[] =
    R"(For a device that does not respond. Without -s: the only one that is attached, in any state.

Examples:
  darokleim reconnect)";

// The named device, or the only one for which `is_meant` is true.
dk::Device Choose(Tool& tool, bool (*is_meant)(const dk::DeviceInfo&), const std::string& kind) {
  if (const auto named = NamedSerial(tool); !named.empty())
    return tool.client().open(named, tool.limits()).value();
  const Devices devices = tool.client().devices(tool.limits()).value();
  const auto count = std::count_if(devices.begin(), devices.end(), is_meant);
  if (count == 1) {
    const auto found = std::find_if(devices.begin(), devices.end(), is_meant);
    return tool.client().open(found->serial, tool.limits()).value();
  }
  if (devices.empty()) throw NoDeviceError(kNoDeviceAdvice);
  if (count == 0) throw NoDeviceError("no device is " + kind + ":\n" + DeviceTable(devices));
  throw UsageError("several devices are " + kind + ". Name one with -s SERIAL.\n" + DeviceTable(devices));
}

bool IsUnauthorized(const dk::DeviceInfo& device) {
  return device.state == DK_STATE_UNAUTHORIZED;
}

bool IsAttached(const dk::DeviceInfo&) {
  return true;
}

// As Seconds, or 0: not at all.
struct WaitTime {
  static constexpr ValueKind kKind = ValueKind::kNumber;
  static WaitTime Parse(const std::string& word) {
    return {word == "0" ? std::chrono::milliseconds(0) : Seconds::Parse(word).value};
  }
  std::chrono::milliseconds value;
};

struct AuthorizeOptions {
  WaitTime wait{std::chrono::seconds(60)};
};

void DescribeAuthorize(Command& command, AuthorizeOptions& options) {
  command.Option("-w,--wait", options.wait, "How long to wait for the answer; 0: not at all")
      .Called("SECONDS")
      .Default("60");
}

void ReportReady(Tool& tool, const std::string& serial, bool is_ready) {
  if (tool.is_json()) {
    tool.document().Member("serial", JsonString(serial));
    tool.document().Member("ready", is_ready ? "true" : "false");
  }
  if (is_ready) tool.Report(serial + " is ready.");
}

void AwaitAnswer(Tool& tool, const dk::Device& device, std::chrono::milliseconds wait) {
  dk::Limits limits = tool.limits();
  const bool is_first_limit = limits.timeout.count() == 0 || wait < limits.timeout;
  if (is_first_limit) limits.timeout = wait;
  const auto waited = device.wait(DK_STATE_READY, limits);
  if (waited.code() == DK_TIMED_OUT && is_first_limit) {
    throw ToolError("USB debugging was not allowed on " + device.serial() +
                    " in time. Unlock it and allow USB debugging on its screen.");
  }
  waited.value();
}

// The server reconnects a device that it does not know without a complaint.
dk_state StateOf(Tool& tool, const dk::Device& device) {
  const auto state = device.state(tool.limits());
  if (state.code() == DK_NO_DEVICE) state.value();
  return state.ok() ? state.value() : DK_STATE_UNKNOWN;
}

void RunAuthorize(Tool& tool, const AuthorizeOptions& options) {
  const dk::Device device = Choose(tool, IsUnauthorized, "unauthorized");
  const std::string serial = device.serial();
  if (StateOf(tool, device) == DK_STATE_READY) return ReportReady(tool, serial, true);
  device.reconnect(tool.limits()).value();
  tool.Report("Allow USB debugging on the screen of " + serial + ".");
  if (options.wait.value.count() == 0) return ReportReady(tool, serial, false);
  AwaitAnswer(tool, device, options.wait.value);
  ReportReady(tool, serial, true);
}

void RunReconnect(Tool& tool) {
  const dk::Device device = Choose(tool, IsAttached, "attached");
  StateOf(tool, device);
  device.reconnect(tool.limits()).value();
  if (tool.is_json()) tool.document().Member("serial", JsonString(device.serial()));
  tool.Report(device.serial() + " is reconnecting. See `darokleim wait`.");
}

// reboot

constexpr char kRebootFooter[] =
    R"(Does not wait until the device is back, which takes about a minute: see `darokleim wait`.

Examples:
  darokleim reboot
  darokleim reboot recovery
  darokleim reboot && sleep 5 && darokleim wait)";

struct RebootOptions {
  std::string mode;
};

void DescribeReboot(Command& command, RebootOptions& options) {
  command.Positional("MODE", options.mode, "What to start instead of Android")
      .OneOf({"bootloader", "recovery", "sideload", "sideload-auto-reboot"});
}

void RunReboot(Tool& tool, const RebootOptions& options) {
  const dk::Device& device = tool.phone();
  device.reboot(options.mode, tool.limits()).value();
  if (tool.is_json()) {
    tool.document().Member("serial", JsonString(device.serial()));
    tool.document().Member("mode", options.mode.empty() ? "null" : JsonString(options.mode));
  }
  tool.Report(device.serial() + " is restarting" +
              (options.mode.empty() ? "." : " into " + options.mode + "."));
}

}  // namespace

void AddWaitCommand(Command& root) {
  AddCommand<WaitOptions>(root, {"wait", "Wait until a device is in a state", kWaitFooter}, DescribeWait,
                          RunWait);
}

void AddConnectCommand(Command& root) {
  AddCommand<Addresses>(root, {"connect", "Connect to devices over the network", kConnectFooter},
                        DescribeConnect, RunConnect);
}

void AddDisconnectCommand(Command& root) {
  AddCommand<Addresses>(root, {"disconnect", "Disconnect devices of the network", kDisconnectFooter},
                        DescribeDisconnect, RunDisconnect);
}

void AddPairCommand(Command& root) {
  AddCommand<PairOptions>(root, {"pair", "Pair with a phone for wireless debugging", kPairFooter},
                          DescribePair, RunPair);
}

void AddAuthorizeCommand(Command& root) {
  AddCommand<AuthorizeOptions>(
      root, {"authorize", "Make a device ask whether to trust this computer", kAuthorizeFooter},
      DescribeAuthorize, RunAuthorize);
}

void AddReconnectCommand(Command& root) {
  AddCommand(root, {"reconnect", "Open the connection to a device again", kReconnectFooter}, RunReconnect);
}

void AddRebootCommand(Command& root) {
  AddCommand<RebootOptions>(root, {"reboot", "Restart the device", kRebootFooter}, DescribeReboot, RunReboot);
}

}  // namespace darokleim::cli

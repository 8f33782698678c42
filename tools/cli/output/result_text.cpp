#include "tools/cli/output/result_text.h"

#include <darokleim.h>
#include <string.h>

#include <algorithm>
#include <iterator>

namespace darokleim::cli {
namespace {

struct KnownResult {
  int code;
  const char* name;
  const char* meaning;
  const char* help;
};

#define DAROKLEIM_NAMED(code) code, #code

constexpr KnownResult kResults[] = {
    {DAROKLEIM_NAMED(ADB_RESULT_OK), "it worked.", ""},
    {DAROKLEIM_NAMED(ADB_RESULT_PROTOCOL_FAULT), "the connection to adb or to the device broke.",
     "Check the cable and try once more."},
    {DAROKLEIM_NAMED(ADB_RESULT_JSON_PARSE_FAILED), "the argument is not valid JSON.",
     "Check its quotes, commas and brackets."},
    {DAROKLEIM_NAMED(ADB_RESULT_INVALID_PARAM), "an argument is missing or empty.",
     "See the command's --help for what it needs."},
    {DAROKLEIM_NAMED(ADB_RESULT_RESOURCE_INCOMPLETE),
     "adb or busybox is missing from the resource directory.",
     "Name adb with --adb PATH, or install the Android platform-tools."},
    {DAROKLEIM_NAMED(ADB_RESULT_BUFFER_TOO_SMALL), "the device's answer is longer than the buffer for it.",
     "Please report this with the device's model."},
    {DAROKLEIM_NAMED(ADB_RESULT_NO_DEVICE), "no such device is attached.",
     "See `darokleim devices`, and check the cable and the serial number."},
    {DAROKLEIM_NAMED(ADB_RESULT_NO_SUCH_FILE), "the path does not exist or is not a regular file.",
     "Check both paths; paths on the device are case-sensitive."},
    {DAROKLEIM_NAMED(ADB_RESULT_UNKNOWN_HOST_SERVICE), "the adb server does not know the request.",
     "A server of an older version is running: end it with `adb kill-server` and try again."},
    {DAROKLEIM_NAMED(ADB_RESULT_CANNOT_CONNECT_DAEMON), "adb could not reach its server.",
     "Start it with `darokleim server start`; something else may hold its TCP port, 5037."},
    {DAROKLEIM_NAMED(ADB_RESULT_NOT_FOUND), "what was searched for is not in the device's answer.",
     "Check the name."},
    {DAROKLEIM_NAMED(ADB_RESULT_PERMISSION_DENIED), "the device refused to search some of the folders.",
     "Search in a folder that adb may read, such as /sdcard."},
    {DAROKLEIM_NAMED(ADB_RESULT_NO_IP_ADDRESS), "the device has no Wi-Fi address.",
     "Turn Wi-Fi on and connect it to a network."},
    {DAROKLEIM_NAMED(ADB_RESULT_FAILURE), "the device's package manager reported a failure.",
     "Its own words are in the log, adb_sdk.log."},
    {DAROKLEIM_NAMED(ADB_RESULT_INSTALL_ALREADY_EXISTS), "the application is installed already.",
     "Uninstall it first."},
    {DAROKLEIM_NAMED(ADB_RESULT_INSTALL_FAILURE_99), "the install failed with the device's code -99.",
     "The device's manufacturer restricts installs; look for a question on its screen and in its developer "
     "options."},
    {DAROKLEIM_NAMED(ADB_RESULT_INSTALL_VERSION_DOWNGRADE),
     "a newer version of the application is installed.", "Uninstall it first, which deletes its data."},
    {DAROKLEIM_NAMED(ADB_RESULT_INSTALL_USER_RESTRICTED), "the device does not allow installing over USB.",
     "Allow it in the device's developer options, and confirm on its screen."},
    {DAROKLEIM_NAMED(ADB_RESULT_INSTALL_NO_CERTIFICATES), "the package is not signed.",
     "Sign the APK, or take it from where it was published."},
    {DAROKLEIM_NAMED(ADB_RESULT_DAEMON_NOT_RUNNING), "the adb server could not be started.",
     "Something else may hold its TCP port, 5037; `adb start-server` says more."},
    {DAROKLEIM_NAMED(ADB_RESULT_INSTALL_CANCELED_BY_USER), "the install was refused on the device's screen.",
     "Try again and allow it there within a few seconds."},
    {DAROKLEIM_NAMED(ADB_RESULT_INSTALL_CANCELLED_BY_USER), "the install was cancelled on the device.",
     "Try again and allow it on the device's screen."},
    {DAROKLEIM_NAMED(ADB_RESULT_NO_CLOSING_QUOTE), "the device's shell could not read the command.",
     "An argument holds a single quote; leave it out."},
    {DAROKLEIM_NAMED(ADB_RESULT_SHELL_NOT_FOUND),
     "the device does not have a shell, or not the program that is needed.",
     "A device in recovery does not have one: start Android on it."},
    {DAROKLEIM_NAMED(ADB_RESULT_DEVICE_UNAUTHORIZED), "the device does not trust this computer yet.",
     "Unlock it and allow USB debugging on its screen; `darokleim authorize` makes it ask again."},
    {DAROKLEIM_NAMED(ADB_RESULT_NOT_ENOUGH_SPACE), "the device does not have enough free space.",
     "Free some of it."},
    {DAROKLEIM_NAMED(ADB_RESULT_MIUI_TIME_CODE_FAILED), "the device does not report a MIUI build date.",
     "It may not run MIUI."},
    {DAROKLEIM_NAMED(ADB_RESULT_MIUI_VERSION_NAME_FAILED), "the device does not report a MIUI version name.",
     "It may not run MIUI."},
    {DAROKLEIM_NAMED(ADB_RESULT_USER_ACCESS_DENIED), "adb may not act for that user of the device.",
     "Switch the device to its first user, outside a work profile or a second space."},
    {DAROKLEIM_NAMED(ADB_RESULT_NO_SPACE_LEFT), "the device's storage is full.", "Free some of it."},
};

#undef DAROKLEIM_NAMED

// The command channel's own statuses.
constexpr KnownResult kChannelStatuses[] = {
    {3001, "channel not started", "the library was not started, or its start failed.", "Please report this."},
    {3002, "adb cannot be started", "the system could not start adb.",
     "Check that it is adb for this computer and processor."},
    {3003, "cancelled", "the command was cancelled, or took longer than DAROKLEIM_CHANNEL_TIMEOUT allows.",
     "Changes already made on the device are kept."},
    {3004, "bad argument", "an argument of the command is missing.", "Please report this."},
    {3005, "too much output", "adb printed more than the library can hold, 2 GiB.", "Request less at once."},
    {3006, "out of resources", "the system refused a pipe, a process or memory.",
     "Close other programs, or raise the limits of open files and processes (see `ulimit -a`)."},
    {3007, "connection broken", "the connection to the device or to the adb server broke during an answer.",
     "Try again."},
};

constexpr int kExitStatusBase = 1000;
constexpr int kSignalBase = 2000;
constexpr int kFirstOwnStatus = 3000;

template <typename Results>
const KnownResult* Find(const Results& results, int code) {
  const auto found = std::find_if(std::begin(results), std::end(results),
                                  [code](const KnownResult& result) { return result.code == code; });
  return found == std::end(results) ? nullptr : found;
}

ResultText TextOf(const KnownResult& result) {
  const std::string help = result.help;
  return {result.name, help.empty() ? result.meaning : result.meaning + (" " + help)};
}

ResultText TextOfExitStatus(int code) {
  return {"adb exit status " + std::to_string(code - kExitStatusBase),
          "adb, or the command on the device, failed without a known message."
          " What it printed is in the log, adb_sdk.log."};
}

ResultText TextOfSignal(int code) {
  const int number = code - kSignalBase;
  return {"adb signal " + std::to_string(number),
          "adb was ended by signal " + std::to_string(number) + ", " + strsignal(number) +
              ". Check that `adb version` works; reinstall adb if not."};
}

}  // namespace

ResultText TextOfResult(int code) {
  if (const auto* known = Find(kResults, code)) return TextOf(*known);
  if (const auto* known = Find(kChannelStatuses, code)) return TextOf(*known);
  if (code >= kExitStatusBase && code < kSignalBase) return TextOfExitStatus(code);
  if (code >= kSignalBase && code < kFirstOwnStatus) return TextOfSignal(code);
  return {"unknown result",
          "a command channel other than this tool's own may return it."
          " See the documentation of that channel."};
}

std::string DescribeResult(int code) {
  const auto text = TextOfResult(code);
  return text.name + " (" + std::to_string(code) + "): " + text.meaning;
}

}  // namespace darokleim::cli

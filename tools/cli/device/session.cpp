#include "tools/cli/device/session.h"

#include <darokleim.h>
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <system_error>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/host_directories.h"
#include "tools/cli/host/resource_directory.h"
#include "tools/cli/output/result_text.h"
#include "tools/cli/output/standard_streams.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

// The library does not look at it, but it must not be null.
constexpr char kLogContext[] = "darokleim";

// Why no log can be written there; nothing when one can.
std::optional<std::string> ReasonForNoLog(const fs::path& directory) {
  std::error_code error;
  fs::create_directories(directory, error);
  if (error) return error.message();
  const int log =
      open((directory / "adb_sdk.log").c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0600);
  if (log < 0) return SystemErrorText(errno);
  close(log);
  return std::nullopt;
}

std::string PrepareLogDirectory(const std::string& named) {
  std::error_code error;
  const fs::path directory = named.empty() ? StateDirectory() : fs::absolute(named, error);
  if (error) throw ToolError("cannot find the folder " + named + ": " + error.message() + ".");
  if (const auto reason = ReasonForNoLog(directory)) {
    PrintError("no log is written: cannot write in " + directory.native() + ": " + *reason +
               ". Name another directory with --log-dir.");
  }
  return directory.native();
}

}  // namespace

Session::Session(const SessionOptions& options)
    : programs_(FindHostPrograms(options.adb.text, options.busybox.text)),
      log_directory_(PrepareLogDirectory(options.log_directory.text)),
      timeout_(static_cast<int>((options.timeout.value.count() + 999) / 1000)) {
  // Also for what takes no cancel flag and runs no adb.
  if (timeout_ > 0) setenv("DAROKLEIM_CHANNEL_TIMEOUT", std::to_string(timeout_).c_str(), 1);
  const auto resources = MakeResourceDirectory(programs_);
  // Paths reach the device as they were given, and line breaks as the library reads them.
  setenv("DAROKLEIM_CHANNEL_ASSIST", "1", 0);
  Check(AdbSdkInit(resources.c_str(), kLogContext, log_directory_.c_str()), "start");
}

void Session::Check(int code, const std::string& action) const {
  CheckCancelled(action);
  CheckCode(code, action);
}

void Session::CheckCancelled(const std::string& action) const {
  if (HasTimedOut()) ThrowTimedOut(action);
  if (IsCancelled()) throw Cancelled();
}

void Session::ThrowTimedOut(const std::string& action) const {
  throw ToolError("cannot " + action + ": not done within " + std::to_string(timeout_) +
                  " s, the limit of --timeout.");
}

void Session::CheckCode(int code, const std::string& action) const {
  if (code == ADB_RESULT_OK) return;
  if (code == ADB_CHANNEL_CANCELLED && timeout_ > 0) ThrowTimedOut(action);
  std::string message = "cannot " + action + ": " + DescribeResult(code);
  if (IsChannelStatus(code) || code == ADB_RESULT_FAILURE) {
    message += " (adb: " + programs_.adb + ", log: " + log_directory_ + ")";
  }
  throw ToolError(message);
}

}  // namespace darokleim::cli

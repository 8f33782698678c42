#include "tools/cli/connection/connection.h"

#include <stdlib.h>

#include <algorithm>
#include <exception>
#include <vector>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/connection/device_table.h"
#include "tools/cli/connection/error_text.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/adb_location.h"

namespace darokleim::cli {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr char kHowToName[] = "Name one with -s SERIAL or in ANDROID_SERIAL.";
// For a question that only makes a message better.
constexpr milliseconds kShortQuestion{300};

bool IsReady(const dk::DeviceInfo& device) {
  return device.state == DK_STATE_READY;
}

// The table at the end of a message.
std::string WithoutLineBreak(std::string table) {
  table.pop_back();
  return table;
}

}  // namespace

Connection::Connection(const ConnectionOptions& options, bool may_start_server)
    : options_(options), may_start_server_(may_start_server) {
  if (options.timeout.value.count() > 0) deadline_ = steady_clock::now() + options.timeout.value;
}

dk::Client& Connection::client() {
  if (client_) return *client_;
  dk::ClientOptions context;
  if (may_start_server_) {
    try {
      context.adb_path = FindHostPrograms(options_.adb.text, "").adb;
    } catch (const ToolError& error) {
      if (!options_.adb.text.empty()) throw;
      reason_for_no_adb_ = error.what();  // matters only where no server runs
    }
  }
  return client_.emplace(context);
}

const dk::Device& Connection::phone() {
  if (!phone_) phone_.emplace(client().open(ChosenSerial(), limits()).value());
  return *phone_;
}

dk::Limits Connection::limits() const {
  dk::Limits limits{CancelToken(), {}};
  if (deadline_) {
    const auto left = std::chrono::duration_cast<milliseconds>(*deadline_ - steady_clock::now());
    limits.timeout = std::max(left, milliseconds(1));
  }
  return limits;
}

std::string Connection::ChosenSerial() {
  if (!options_.serial.text.empty()) return options_.serial.text;
  const char* const from_environment = getenv("ANDROID_SERIAL");
  if (from_environment == nullptr || *from_environment == '\0') return TheOnlyReady();
  if (!IsSerial(from_environment)) {
    throw UsageError("ANDROID_SERIAL is \"" + std::string(from_environment) +
                     "\", which is not a valid serial number. See `darokleim devices`.");
  }
  return from_environment;
}

std::string Connection::TheOnlyReady() {
  const auto devices = client().devices(limits()).value();
  const auto ready = std::count_if(devices.begin(), devices.end(), IsReady);
  if (ready == 1) return std::find_if(devices.begin(), devices.end(), IsReady)->serial;
  if (devices.empty()) throw NoDeviceError(kNoDeviceAdvice);
  if (ready == 0) throw NoDeviceError("no device is ready:\n" + WithoutLineBreak(DeviceTable(devices)));
  throw UsageError("several devices are attached. " + std::string(kHowToName) + "\n" +
                   WithoutLineBreak(DeviceTable(devices)));
}

std::string Connection::TextOf(const dk::Error& error) {
  std::string text = ErrorText(error);
  if (error.code() == DK_TIMED_OUT && deadline_) return text + " The limit is that of --timeout.";
  if (error.code() == DK_NO_SERVER && reason_for_no_adb_)
    return text + " None was started: " + *reason_for_no_adb_;
  if (error.code() != DK_NO_DEVICE || !client_) return text;
  const auto devices = client_->devices({CancelToken(), kShortQuestion});
  if (!devices.ok()) return text;
  const auto list = dk::Result<std::vector<dk::DeviceInfo>>(devices).value();
  return list.empty() ? text + " " + kNoDeviceAdvice
                      : text + " Attached are:\n" + WithoutLineBreak(DeviceTable(list));
}

}  // namespace darokleim::cli

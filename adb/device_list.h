// The phones that the server knows, once or each time they change.
#ifndef DAROKLEIM_ADB_DEVICE_LIST_H
#define DAROKLEIM_ADB_DEVICE_LIST_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "adb/connection.h"

namespace darokleim::adb {

enum class ListForm {
  kShort,  // serial and state
  kLong,   // also where the phone is plugged in, its names and its transport id
};

// The server's own text, a line for each phone.
Result<std::string> QueryDeviceList(const ServerAddress& server, ListForm form, const Limits& limits);

struct AttachedDevice {
  std::string serial;
  std::string state;  // "device", "offline", "unauthorized", "no permissions (…)" …
  // The rest is empty in the short form and wherever the server does not know it.
  std::string plug;  // such as "usb:1-4"; empty over the network
  std::string product;
  std::string model;
  std::string device;
  std::uint64_t transport_id = 0;
};

// The lines of either form. A line that is not of the form is left out.
std::vector<AttachedDevice> ParseDeviceList(std::string_view text);

// Reports the list at once and then after each change, without polling. Passing states are reported too: a phone that
// is being plugged in is often offline first.
class DeviceTracker {
 public:
  static Result<DeviceTracker> Open(const ServerAddress& server, ListForm form, const Limits& limits);

  // Waits for the next list, in the server's own text. After kTimedOut and kCancelled it may be called again.
  // kConnectionBroken: the server has ended.
  Result<std::string> Next(const Limits& limits);

 private:
  explicit DeviceTracker(Connection connection) : connection_(std::move(connection)) {}
  Connection connection_;
};

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_DEVICE_LIST_H

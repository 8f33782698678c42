#include "adb/device_list.h"

#include <charconv>
#include <optional>

#include "adb/host_services.h"
#include "adb/message.h"

namespace darokleim::adb {

namespace {

constexpr std::string_view kSpaces = " \t";
// What the server shows of a phone that has not said its serial number.
constexpr std::string_view kNoSerial = "(no serial number)";

// Takes " KEY:VALUE" off the end of the line, or gives nothing and leaves it.
std::optional<std::string_view> TakeLast(std::string_view* line, std::string_view key) {
  const size_t space = line->rfind(' ');
  if (space == std::string_view::npos) return std::nullopt;
  const std::string_view word = line->substr(space + 1);
  if (word.substr(0, key.size()) != key) return std::nullopt;
  *line = line->substr(0, space);
  return word.substr(key.size());
}

// The long form's details, from the last to the first; each may be missing.
void TakeDetails(std::string_view* line, AttachedDevice* device) {
  if (const auto id = TakeLast(line, "transport_id:")) {
    std::from_chars(id->data(), id->data() + id->size(), device->transport_id);
  }
  if (const auto value = TakeLast(line, "device:")) device->device = *value;
  if (const auto value = TakeLast(line, "model:")) device->model = *value;
  if (const auto value = TakeLast(line, "product:")) device->product = *value;
  if (const auto value = TakeLast(line, "usb:")) device->plug = "usb:" + std::string(*value);
}

bool ParseLine(std::string_view line, AttachedDevice* device) {
  if (const size_t tab = line.find('\t'); tab != std::string_view::npos) {
    device->serial = line.substr(0, tab);
    device->state = line.substr(tab + 1);
    return tab > 0 && tab + 1 < line.size();
  }
  const bool unnamed = line.substr(0, kNoSerial.size()) == kNoSerial;
  const size_t end = unnamed ? kNoSerial.size() : line.find_first_of(kSpaces);
  if (end == std::string_view::npos || end == 0) return false;
  device->serial = line.substr(0, end);
  line.remove_prefix(end);
  TakeDetails(&line, device);
  const size_t state = line.find_first_not_of(kSpaces);
  if (state == std::string_view::npos) return false;
  device->state = line.substr(state);
  return true;
}

}  // namespace

std::vector<AttachedDevice> ParseDeviceList(std::string_view text) {
  std::vector<AttachedDevice> devices;
  while (!text.empty()) {
    const size_t length = text.find('\n');
    AttachedDevice device;
    if (ParseLine(text.substr(0, length), &device)) devices.push_back(std::move(device));
    if (length == std::string_view::npos) break;
    text.remove_prefix(length + 1);
  }
  return devices;
}

Result<std::string> QueryDeviceList(const ServerAddress& server, ListForm form, const Limits& limits) {
  return Query(server, form == ListForm::kLong ? "host:devices-l" : "host:devices", limits);
}

Result<DeviceTracker> DeviceTracker::Open(const ServerAddress& server, ListForm form, const Limits& limits) {
  const std::string_view request = form == ListForm::kLong ? "host:track-devices-l" : "host:track-devices";
  Result<Connection> connection = Ask(server, request, limits);
  if (!connection.ok()) return connection.TakeError();
  return DeviceTracker(*std::move(connection));
}

Result<std::string> DeviceTracker::Next(const Limits& limits) {
  return TakeText(&connection_, "track-devices", limits);
}

}  // namespace darokleim::adb

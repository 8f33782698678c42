#include "tools/phone/server/connection_state.h"

#include <array>

namespace darokleim::phone {

namespace {

struct StateRow {
  ConnectionState state;
  std::string_view name;
  std::string_view refusal;
  std::string_view words = name;
};

// A server started from an application has no vendor keys, so the middle line never varies here.
constexpr std::array<StateRow, 8> kStates = {{
    {ConnectionState::kDevice, "device", ""},
    {ConnectionState::kOffline, "offline", "device offline"},
    {ConnectionState::kUnauthorized, "unauthorized",
     "device unauthorized.\n"
     "This adb server's $ADB_VENDOR_KEYS is not set\n"
     "Try 'adb kill-server' if that seems wrong.\n"
     "Otherwise check for a confirmation dialog on your device."},
    {ConnectionState::kAuthorizing, "authorizing", "device still authorizing"},
    {ConnectionState::kConnecting, "connecting", "device still connecting"},
    // Of a computer whose udev rules do not name the phone.
    {ConnectionState::kNoPermissions, "no-permissions",
     "insufficient permissions for device: missing udev rules? user is in the plugdev group\n"
     "See [http://developer.android.com/tools/device.html] for more information",
     "no permissions (missing udev rules? user is in the plugdev group); see "
     "[http://developer.android.com/tools/device.html]"},
    {ConnectionState::kRecovery, "recovery", ""},
    {ConnectionState::kSideload, "sideload", ""},
}};

const StateRow& RowOf(ConnectionState state) {
  for (const StateRow& row : kStates) {
    if (row.state == state) return row;
  }
  return kStates.front();
}

}  // namespace

std::string_view NameOf(ConnectionState state) {
  return RowOf(state).name;
}

std::string_view WordsOf(ConnectionState state) {
  return RowOf(state).words;
}

std::optional<ConnectionState> ParseConnectionState(std::string_view name) {
  for (const StateRow& row : kStates) {
    if (row.name == name) return row.state;
  }
  return std::nullopt;
}

std::string_view RefusalOf(ConnectionState state) {
  return RowOf(state).refusal;
}

}  // namespace darokleim::phone

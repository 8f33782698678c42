// What a phone's own daemon answers, apart from the shell and from files.
#ifndef DAROKLEIM_ADB_DEVICE_SERVICES_H
#define DAROKLEIM_ADB_DEVICE_SERVICES_H

#include <string>
#include <string_view>

#include "adb/transport.h"

namespace darokleim::adb {

// Any service that says something and ends: "remount:", "tcpip:5555" … kProtocolFault beyond kLongestServiceText.
inline constexpr size_t kLongestServiceText = 1024 * 1024;
Result<std::string> RunService(const ServerAddress& server, const DeviceSelector& device,
                               std::string_view service, const Limits& limits);

// `target`: empty for the system, or "bootloader", "recovery", "sideload" … Gives what the phone says to it. On a connection from
// SelectDevice, kConnectionBroken may also mean that the phone has gone before it answered.
Result<std::string> Reboot(Connection connection, std::string_view target, const Limits& limits);
Result<std::string> Reboot(const ServerAddress& server, const DeviceSelector& device, std::string_view target,
                           const Limits& limits);

// The phone drops its connection and makes it anew.
Result<std::string> ReconnectFromDevice(const ServerAddress& server, const DeviceSelector& device,
                                        const Limits& limits);

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_DEVICE_SERVICES_H

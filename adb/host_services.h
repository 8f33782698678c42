// What the adb server itself answers. Each call has a connection of its own.
#ifndef DAROKLEIM_ADB_HOST_SERVICES_H
#define DAROKLEIM_ADB_HOST_SERVICES_H

#include <string>
#include <string_view>

#include "adb/transport.h"

namespace darokleim::adb {

// Any request that is answered by OKAY and a text: "host:version", or what DeviceSelector::HostRequest gives.
Result<std::string> Query(const ServerAddress& server, std::string_view request, const Limits& limits);

// A connection of which the request was sent and answered with OKAY; what follows is still to be read.
Result<Connection> Ask(const ServerAddress& server, std::string_view request, const Limits& limits);

// The number of the server's own protocol: 41 since 2018.
Result<unsigned> QueryVersion(const ServerAddress& server, const Limits& limits);

// Ends the server, and with it the connections of every program that uses it.
Status KillServer(const ServerAddress& server, const Limits& limits);

// "device", "offline", "unauthorized" …; kRefused where there is no such phone.
Result<std::string> QueryState(const ServerAddress& server, const DeviceSelector& device,
                               const Limits& limits);
Result<std::string> QuerySerial(const ServerAddress& server, const DeviceSelector& device,
                                const Limits& limits);

// Over which connection a phone is waited for.
enum class ConnectionKind { kAny, kUsb, kNetwork };
// Returns once the phone is in this state: "device", "recovery", "disconnect" …
Status WaitForState(const ServerAddress& server, const DeviceSelector& device, ConnectionKind kind,
                    std::string_view state, const Limits& limits);

// The server's text about what it did. That it failed is said by the text alone, not by a refusal.
Result<std::string> ConnectOverNetwork(const ServerAddress& server, std::string_view address,
                                       const Limits& limits);
// An empty address: every phone over the network.
Result<std::string> Disconnect(const ServerAddress& server, std::string_view address, const Limits& limits);
Result<std::string> Pair(const ServerAddress& server, std::string_view code, std::string_view address,
                         const Limits& limits);

// The server drops its connection to the phone and makes it anew; its text about it.
Result<std::string> ReconnectFromServer(const ServerAddress& server, const DeviceSelector& device,
                                        const Limits& limits);
// The same for every phone that is offline or unauthorized.
Result<std::string> ReconnectOffline(const ServerAddress& server, const Limits& limits);

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_HOST_SERVICES_H

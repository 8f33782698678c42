#include "adb/host_services.h"

#include <charconv>

#include "adb/message.h"

namespace darokleim::adb {

namespace {

std::string_view WordOf(ConnectionKind kind) {
  switch (kind) {
    case ConnectionKind::kAny:
      return "any";
    case ConnectionKind::kUsb:
      return "usb";
    case ConnectionKind::kNetwork:
      return "local";
  }
  return {};  // there is no other kind
}

}  // namespace

Result<Connection> Ask(const ServerAddress& server, std::string_view request, const Limits& limits) {
  Result<Connection> connection = Connection::Open(server, limits);
  if (!connection.ok()) return connection;
  if (Status status = SendRequest(&*connection, request, limits); !status.ok()) return status.TakeError();
  if (Status status = ReadStatus(&*connection, request, limits); !status.ok()) return status.TakeError();
  return connection;
}

Result<std::string> Query(const ServerAddress& server, std::string_view request, const Limits& limits) {
  Result<Connection> connection = Ask(server, request, limits);
  if (!connection.ok()) return connection.TakeError();
  return ReadText(&*connection, request, limits);
}

Result<unsigned> QueryVersion(const ServerAddress& server, const Limits& limits) {
  Result<std::string> text = Query(server, "host:version", limits);
  if (!text.ok()) return text.TakeError();
  unsigned version = 0;
  const char* end = text->data() + text->size();
  const auto [parsed, error] = std::from_chars(text->data(), end, version, 16);
  if (error != std::errc() || parsed != end) return Unexpected("a hexadecimal version", *text);
  return version;
}

// The server may end before it has answered.
Status KillServer(const ServerAddress& server, const Limits& limits) {
  Result<Connection> connection = Ask(server, "host:kill", limits);
  if (connection.ok() || connection.error().code == ErrorCode::kConnectionBroken) return {};
  return connection.TakeError();
}

Result<std::string> QueryState(const ServerAddress& server, const DeviceSelector& device,
                               const Limits& limits) {
  return Query(server, device.HostRequest("get-state"), limits);
}

Result<std::string> QuerySerial(const ServerAddress& server, const DeviceSelector& device,
                                const Limits& limits) {
  return Query(server, device.HostRequest("get-serialno"), limits);
}

Status WaitForState(const ServerAddress& server, const DeviceSelector& device, ConnectionKind kind,
                    std::string_view state, const Limits& limits) {
  const std::string service = "wait-for-" + std::string(WordOf(kind)) + "-" + std::string(state);
  const std::string request = device.HostRequest(service);
  Result<Connection> connection = Ask(server, request, limits);
  if (!connection.ok()) return connection.TakeError();
  return ReadStatus(&*connection, request, limits);  // the second one: the state is reached
}

Result<std::string> ConnectOverNetwork(const ServerAddress& server, std::string_view address,
                                       const Limits& limits) {
  return Query(server, "host:connect:" + std::string(address), limits);
}

Result<std::string> Disconnect(const ServerAddress& server, std::string_view address, const Limits& limits) {
  return Query(server, "host:disconnect:" + std::string(address), limits);
}

Result<std::string> Pair(const ServerAddress& server, std::string_view code, std::string_view address,
                         const Limits& limits) {
  return Query(server, "host:pair:" + std::string(code) + ":" + std::string(address), limits);
}

Result<std::string> ReconnectFromServer(const ServerAddress& server, const DeviceSelector& device,
                                        const Limits& limits) {
  return Query(server, device.HostRequest("reconnect"), limits);
}

Result<std::string> ReconnectOffline(const ServerAddress& server, const Limits& limits) {
  return Query(server, "host:reconnect-offline", limits);
}

}  // namespace darokleim::adb

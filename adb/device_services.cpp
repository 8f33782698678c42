#include "adb/device_services.h"

#include "adb/message.h"

namespace darokleim::adb {

Result<std::string> RunService(const ServerAddress& server, const DeviceSelector& device,
                               std::string_view service, const Limits& limits) {
  Result<Connection> connection = OpenService(server, device, service, limits);
  if (!connection.ok()) return connection.TakeError();
  return ReadToEnd(&*connection, kLongestServiceText, limits);
}

Result<std::string> Reboot(Connection connection, std::string_view target, const Limits& limits) {
  if (Status status = StartService(&connection, "reboot:" + std::string(target), limits); !status.ok())
    return status.TakeError();
  return ReadToEnd(&connection, kLongestServiceText, limits);
}

Result<std::string> Reboot(const ServerAddress& server, const DeviceSelector& device, std::string_view target,
                           const Limits& limits) {
  auto selected = SelectDevice(server, device, limits);
  if (!selected.ok()) return selected.TakeError();
  return Reboot(std::move(selected->connection), target, limits);
}

Result<std::string> ReconnectFromDevice(const ServerAddress& server, const DeviceSelector& device,
                                        const Limits& limits) {
  return RunService(server, device, "reconnect", limits);
}

}  // namespace darokleim::adb

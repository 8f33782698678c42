#include "adb/transport.h"

#include "adb/message.h"
#include "base/little_endian.h"

namespace darokleim::adb {

std::string DeviceSelector::HostRequest(std::string_view service) const {
  std::string request;
  switch (kind_) {
    case Kind::kSerial:
      request = "host-serial:" + name_ + ":";
      break;
    case Kind::kTransportId:
      request = "host-transport-id:" + name_ + ":";
      break;
    case Kind::kAny:
      request = "host:";
      break;
    case Kind::kUsb:
      request = "host-usb:";
      break;
    case Kind::kNetwork:
      request = "host-local:";
  }
  return request.append(service);
}

std::string DeviceSelector::TransportRequest() const {
  switch (kind_) {
    case Kind::kSerial:
      return "host:tport:serial:" + name_;
    case Kind::kTransportId:
      return "host:transport-id:" + name_;
    case Kind::kAny:
      return "host:tport:any";
    case Kind::kUsb:
      return "host:tport:usb";
    case Kind::kNetwork:
      return "host:tport:local";
  }
  return {};  // there is no other kind
}

Result<DeviceConnection> SelectDevice(const ServerAddress& server, const DeviceSelector& device,
                                      const Limits& limits) {
  Result<Connection> connection = Connection::Open(server, limits);
  if (!connection.ok()) return connection.TakeError();
  const std::string request = device.TransportRequest();
  if (Status status = SendRequest(&*connection, request, limits); !status.ok()) return status.TakeError();
  if (Status status = ReadStatus(&*connection, request, limits); !status.ok()) return status.TakeError();
  std::uint64_t id = 0;
  if (device.AnswersWithId()) {
    if (Status status = connection->Buffer(sizeof(id), "the phone's transport id", limits); !status.ok()) {
      return status.TakeError();
    }
    id = base::GetLe64(connection->buffered().data());
    connection->Consume(sizeof(id));
  }
  return DeviceConnection{*std::move(connection), id};
}

// Never in one piece with the transport's request: a server may then answer nothing more.
Status StartService(Connection* connection, std::string_view service, const Limits& limits) {
  if (Status status = SendRequest(connection, service, limits); !status.ok()) return status;
  return ReadStatus(connection, service, limits);
}

Result<Connection> OpenService(const ServerAddress& server, const DeviceSelector& device,
                               std::string_view service, const Limits& limits) {
  Result<DeviceConnection> selected = SelectDevice(server, device, limits);
  if (!selected.ok()) return selected.TakeError();
  if (Status status = StartService(&selected->connection, service, limits); !status.ok())
    return status.TakeError();
  return std::move(selected->connection);
}

}  // namespace darokleim::adb

// Choosing a phone, and asking it for a service.
#ifndef DAROKLEIM_ADB_TRANSPORT_H
#define DAROKLEIM_ADB_TRANSPORT_H

#include <cstdint>
#include <string>
#include <string_view>

#include "adb/connection.h"

namespace darokleim::adb {

// Which of the attached phones a request is for.
class DeviceSelector {
 public:
  static DeviceSelector Serial(std::string serial) { return {Kind::kSerial, std::move(serial)}; }
  static DeviceSelector TransportId(std::uint64_t id) { return {Kind::kTransportId, std::to_string(id)}; }
  // Refused by the server unless exactly one is attached (over USB; over the network or as an emulator).
  static DeviceSelector Any() { return {Kind::kAny, {}}; }
  static DeviceSelector Usb() { return {Kind::kUsb, {}}; }
  static DeviceSelector Network() { return {Kind::kNetwork, {}}; }

  // A request to the server about this phone: host-serial:X:SERVICE.
  std::string HostRequest(std::string_view service) const;
  // The request that hands a connection over to this phone: host:tport:serial:X.
  std::string TransportRequest() const;
  // Whether eight bytes, the transport's id, follow the OKAY to it.
  bool AnswersWithId() const { return kind_ != Kind::kTransportId; }

 private:
  enum class Kind { kSerial, kTransportId, kAny, kUsb, kNetwork };
  DeviceSelector(Kind kind, std::string name) : kind_(kind), name_(std::move(name)) {}

  Kind kind_;
  std::string name_;
};

// A connection that the server has handed over to a phone; no service was asked for yet.
struct DeviceConnection {
  Connection connection;
  std::uint64_t transport_id = 0;  // new each time the phone is attached; 0 where the server does not say it
};
Result<DeviceConnection> SelectDevice(const ServerAddress& server, const DeviceSelector& device,
                                      const Limits& limits);

// Asks the phone for a service such as "sync:" or "reboot:" and waits until it is accepted. From the moment of this
// call on, the service may have been started, whatever the error.
Status StartService(Connection* connection, std::string_view service, const Limits& limits);

// SelectDevice and StartService.
Result<Connection> OpenService(const ServerAddress& server, const DeviceSelector& device,
                               std::string_view service, const Limits& limits);

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_TRANSPORT_H

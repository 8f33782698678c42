// The forms that ask the server, or the phone's daemon, for one thing: devices, forward, reverse, reconnect, reboot.
#include "adb/host_services.h"
#include "adb/message.h"
#include "channel/direct/call.h"

namespace darokleim::channel::direct {
namespace {

constexpr std::string_view kMappingError = "adb: error: ";

// After the second OKAY, which says that it is done, comes the port that was chosen, if at all.
Attempt AnswerOfMapping(const Call& call, const std::string& service, adb::Connection* connection) {
  if (const adb::Status done = adb::ReadStatus(connection, service, call.limits); !done.ok()) {
    return EndAfter(call, kMappingError, done.error());
  }
  const adb::Result<std::string> port = adb::ReadTextOrNothing(connection, service, call.limits);
  if (!port.ok()) return EndWithin(port.error());
  return call.Finish(port->empty() ? *port : std::string(UpToZero(*port)) + '\n', 0);
}

// prefix: whom the request is for, the server or the phone.
Attempt RunMapping(const Call& call, const std::string& prefix) {
  const std::span<const std::string> addresses = call.form.operands;
  const std::string service = call.form.option ? prefix + "killforward:" + addresses[0]
                                               : prefix + "forward:" + addresses[0] + ';' + addresses[1];
  adb::Result<adb::DeviceConnection> phone = adb::SelectDevice(call.server, call.device(), call.limits);
  if (!phone.ok()) return EndBefore(call, kMappingError, phone.error());
  adb::Connection& connection = phone->connection;
  if (const adb::Status accepted = adb::StartService(&connection, service, call.limits); !accepted.ok()) {
    return EndAfter(call, kMappingError, accepted.error());
  }
  return AnswerOfMapping(call, service, &connection);
}

}  // namespace

// A list that is incomplete may be asked for once more.
Attempt RunDevices(const Call& call) {
  const adb::Result<std::string> devices = adb::Query(call.server, "host:devices", call.limits);
  if (!devices.ok()) return EndBefore(call, kError, devices.error());
  return call.Finish("List of devices attached\n" + std::string(UpToZero(*devices)) + '\n', 0);
}

Attempt RunForward(const Call& call) {
  return RunMapping(call, "host:");
}

Attempt RunReverse(const Call& call) {
  return RunMapping(call, "reverse:");
}

// That there is no such phone is said in the text of a success.
Attempt RunReconnect(const Call& call) {
  adb::Result<adb::Connection> connection = adb::Connection::Open(call.server, call.limits);
  if (!connection.ok()) return EndBefore(call, kError, connection.error());
  const std::string request = call.device().HostRequest("reconnect");
  if (const adb::Status sent = adb::SendRequest(&*connection, request, call.limits); !sent.ok()) {
    return EndAfter(call, kError, sent.error());
  }
  if (const adb::Status accepted = adb::ReadStatus(&*connection, request, call.limits); !accepted.ok()) {
    // Not an adb server, so nothing was reconnected.
    const bool foreign = accepted.error().code == adb::ErrorCode::kProtocolFault;
    return foreign ? kGiveWay : EndAfter(call, kError, accepted.error());
  }
  const adb::Result<std::string> text = adb::ReadText(&*connection, request, call.limits);
  if (!text.ok()) return EndWithin(text.error());
  return call.Finish(std::string(UpToZero(*text)) + '\n', 0);
}

Attempt RunReboot(const Call& call) {
  const std::string service = "reboot:" + (call.form.operands.empty() ? "" : call.form.operands[0]);
  adb::Result<adb::DeviceConnection> phone = adb::SelectDevice(call.server, call.device(), call.limits);
  if (!phone.ok()) return EndBefore(call, kError, phone.error());
  adb::Connection& connection = phone->connection;
  if (const adb::Status accepted = adb::StartService(&connection, service, call.limits); !accepted.ok()) {
    return EndAfter(call, kError, accepted.error());
  }
  return PrintStream(call, &connection);
}

}  // namespace darokleim::channel::direct

#include "adb/ports.h"

#include "adb/host_services.h"
#include "adb/message.h"

namespace darokleim::adb {

namespace {

std::string AddRequest(std::string_view listening, std::string_view target, Rebind rebind) {
  std::string request = rebind == Rebind::kRefuse ? "forward:norebind:" : "forward:";
  return request.append(listening).append(";").append(target);
}

std::string RemoveRequest(std::string_view listening) {
  return "killforward:" + std::string(listening);
}

// The first OKAY accepted the request; the second says that it was done, and a port may follow.
Result<std::string> Outcome(Result<Connection> connection, std::string_view what, const Limits& limits) {
  if (!connection.ok()) return connection.TakeError();
  if (Status status = ReadStatus(&*connection, what, limits); !status.ok()) return status.TakeError();
  return ReadTextOrNothing(&*connection, what, limits);
}

Status WithoutText(Result<Connection> connection, std::string_view what, const Limits& limits) {
  if (!connection.ok()) return connection.TakeError();
  return ReadStatus(&*connection, what, limits);
}

Result<Connection> AskPhone(const ServerAddress& server, const DeviceSelector& device,
                            std::string_view request, const Limits& limits) {
  return OpenService(server, device, "reverse:" + std::string(request), limits);
}

}  // namespace

Result<std::string> AddForward(const ServerAddress& server, const DeviceSelector& device,
                               std::string_view local, std::string_view remote, Rebind rebind,
                               const Limits& limits) {
  return Outcome(Ask(server, device.HostRequest(AddRequest(local, remote, rebind)), limits), "forward",
                 limits);
}

Status RemoveForward(const ServerAddress& server, const DeviceSelector& device, std::string_view local,
                     const Limits& limits) {
  return WithoutText(Ask(server, device.HostRequest(RemoveRequest(local)), limits), "killforward", limits);
}

Status RemoveAllForwards(const ServerAddress& server, const Limits& limits) {
  return WithoutText(Ask(server, "host:killforward-all", limits), "killforward-all", limits);
}

Result<std::string> QueryForwards(const ServerAddress& server, const Limits& limits) {
  return Query(server, "host:list-forward", limits);
}

Result<std::string> AddReverse(const ServerAddress& server, const DeviceSelector& device,
                               std::string_view remote, std::string_view local, Rebind rebind,
                               const Limits& limits) {
  return Outcome(AskPhone(server, device, AddRequest(remote, local, rebind), limits), "reverse", limits);
}

Status RemoveReverse(const ServerAddress& server, const DeviceSelector& device, std::string_view remote,
                     const Limits& limits) {
  return WithoutText(AskPhone(server, device, RemoveRequest(remote), limits), "killforward", limits);
}

Status RemoveAllReverses(const ServerAddress& server, const DeviceSelector& device, const Limits& limits) {
  return WithoutText(AskPhone(server, device, "killforward-all", limits), "killforward-all", limits);
}

Result<std::string> QueryReverses(const ServerAddress& server, const DeviceSelector& device,
                                  const Limits& limits) {
  Result<Connection> connection = AskPhone(server, device, "list-forward", limits);
  if (!connection.ok()) return connection.TakeError();
  return ReadText(&*connection, "list-forward", limits);
}

}  // namespace darokleim::adb

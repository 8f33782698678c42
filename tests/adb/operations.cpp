#include "tests/adb/operations.h"

#include <ostream>

#include "adb/device_list.h"
#include "adb/device_services.h"
#include "adb/features.h"
#include "adb/host_services.h"
#include "adb/ports.h"
#include "adb/shell.h"

namespace darokleim::adb_test {

using namespace adb;

namespace {

const DeviceSelector kPhone = DeviceSelector::Serial("X");
const Exchange kTransport = {Request("host:tport:serial:X"), std::string("OKAY\x07\0\0\0\0\0\0\0", 12)};

template <typename Value>
Status Require(Result<Value> result, const Value& expected) {
  if (!result.ok()) return result.TakeError();
  if (*result != expected) return Error{ErrorCode::kMisuse, "another value than expected"};
  return {};
}

Operation HostText(std::string name, std::string_view request, std::string text,
                   std::function<Result<std::string>(const ServerAddress&, const Limits&)> call) {
  Operation operation;
  operation.name = std::move(name);
  operation.conversation = {{Request(request), "OKAY" + Request(text)}};
  operation.call = [call = std::move(call), text](const ServerAddress& server, const Limits& limits) {
    return Require(call(server, limits), text);
  };
  return operation;
}

Operation Named(std::string name, std::vector<Exchange> conversation,
                std::function<Status(const ServerAddress&, const Limits&)> call) {
  Operation operation;
  operation.name = std::move(name);
  operation.conversation = std::move(conversation);
  operation.call = std::move(call);
  return operation;
}

std::string Packet(char id, std::string_view data) {
  std::string packet(1, id);
  packet += {static_cast<char>(data.size() & 255), static_cast<char>(data.size() >> 8), 0, 0};
  return packet.append(data);
}

std::vector<Operation> HostOperations() {
  std::vector<Operation> all;
  all.push_back(Named(
      "Version", {{Request("host:version"), "OKAY00040029"}},
      [](const auto& server, const auto& limits) { return Require(QueryVersion(server, limits), 0x29u); }));
  all.push_back(
      HostText("Devices", "host:devices", "X\tdevice\n", [](const auto& server, const auto& limits) {
        return QueryDeviceList(server, ListForm::kShort, limits);
      }));
  all.push_back(HostText("DevicesLong", "host:devices-l", "", [](const auto& server, const auto& limits) {
    return QueryDeviceList(server, ListForm::kLong, limits);
  }));
  all.push_back(HostText("Features", "host-serial:X:features", "shell_v2,cmd",
                         [](const auto& server, const auto& limits) -> Result<std::string> {
                           auto features = QueryFeatures(server, kPhone, limits);
                           if (!features.ok()) return features.TakeError();
                           return features->names();
                         }));
  all.push_back(
      HostText("State", "host-serial:X:get-state", "device",
               [](const auto& server, const auto& limits) { return QueryState(server, kPhone, limits); }));
  all.push_back(HostText("Connect", "host:connect:10.0.0.1:5555", "connected to 10.0.0.1:5555",
                         [](const auto& server, const auto& limits) {
                           return ConnectOverNetwork(server, "10.0.0.1:5555", limits);
                         }));
  all.push_back(
      HostText("Disconnect", "host:disconnect:", "disconnected everything",
               [](const auto& server, const auto& limits) { return Disconnect(server, "", limits); }));
  all.push_back(HostText("Pair", "host:pair:123456:10.0.0.1:40000", "Successfully paired",
                         [](const auto& server, const auto& limits) {
                           return Pair(server, "123456", "10.0.0.1:40000", limits);
                         }));
  all.push_back(HostText(
      "ReconnectFromServer", "host-serial:X:reconnect", "reconnecting X [device]\n",
      [](const auto& server, const auto& limits) { return ReconnectFromServer(server, kPhone, limits); }));
  all.push_back(
      HostText("ReconnectOffline", "host:reconnect-offline", "reconnecting X",
               [](const auto& server, const auto& limits) { return ReconnectOffline(server, limits); }));
  all.push_back(
      HostText("Forwards", "host:list-forward", "X tcp:1 tcp:2\n",
               [](const auto& server, const auto& limits) { return QueryForwards(server, limits); }));
  all.push_back(Named("WaitForState", {{Request("host-serial:X:wait-for-any-device"), "OKAYOKAY"}},
                      [](const auto& server, const auto& limits) {
                        return WaitForState(server, kPhone, ConnectionKind::kAny, "device", limits);
                      }));
  all.push_back(Named("TrackDevices", {{Request("host:track-devices"), "OKAY0000" + Request("X\toffline\n")}},
                      [](const auto& server, const auto& limits) -> Status {
                        auto tracker = DeviceTracker::Open(server, ListForm::kShort, limits);
                        if (!tracker.ok()) return tracker.TakeError();
                        if (Status none = Require(tracker->Next(limits), std::string()); !none.ok())
                          return none;
                        return Require(tracker->Next(limits), std::string("X\toffline\n"));
                      }));
  all.push_back(Named(
      "RemoveForward", {{Request("host-serial:X:killforward:tcp:1"), "OKAYOKAY"}},
      [](const auto& server, const auto& limits) { return RemoveForward(server, kPhone, "tcp:1", limits); }));
  all.push_back(
      Named("RemoveAllForwards", {{Request("host:killforward-all"), "OKAYOKAY"}},
            [](const auto& server, const auto& limits) { return RemoveAllForwards(server, limits); }));
  Operation forward =
      Named("Forward", {{Request("host-serial:X:forward:norebind:tcp:0;tcp:2"), "OKAYOKAY000540001"}},
            [](const auto& server, const auto& limits) -> Status {
              auto port = AddForward(server, kPhone, "tcp:0", "tcp:2", Rebind::kRefuse, limits);
              return port.ok() ? Status() : port.TakeError();
            });
  forward.is_whole_at = [](std::size_t cut) { return cut == 8; };  // a server need not say the port
  all.push_back(std::move(forward));
  return all;
}

std::vector<Operation> DeviceOperations() {
  std::vector<Operation> all;
  all.push_back(Named("Reverse", {kTransport, {Request("reverse:forward:tcp:1;tcp:2"), "OKAYOKAY000540001"}},
                      [](const auto& server, const auto& limits) -> Status {
                        auto port = AddReverse(server, kPhone, "tcp:1", "tcp:2", Rebind::kAllow, limits);
                        return port.ok() ? Status() : port.TakeError();
                      }));
  all.back().is_whole_at = [](std::size_t cut) { return cut == 12 + 8; };
  all.push_back(Named(
      "RemoveReverse", {kTransport, {Request("reverse:killforward:tcp:1"), "OKAYOKAY"}},
      [](const auto& server, const auto& limits) { return RemoveReverse(server, kPhone, "tcp:1", limits); }));
  all.push_back(Named(
      "RemoveAllReverses", {kTransport, {Request("reverse:killforward-all"), "OKAYOKAY"}},
      [](const auto& server, const auto& limits) { return RemoveAllReverses(server, kPhone, limits); }));
  all.push_back(Named("Reverses", {kTransport, {Request("reverse:list-forward"), "OKAY0003abc"}},
                      [](const auto& server, const auto& limits) {
                        return Require(QueryReverses(server, kPhone, limits), std::string("abc"));
                      }));
  all.push_back(Named(
      "ShellV2",
      {kTransport,
       {Request("shell,v2,TERM=xterm,raw:ls"), "OKAY"},
       {Packet(4, ""), Packet(1, "out") + Packet(2, "err") + Packet(1, "") + Packet(3, "\x05")}},
      [](const auto& server, const auto& limits) -> Status {
        auto shell = ShellSession::Start(server, kPhone, {.command = "ls", .terminal = "xterm"}, limits);
        if (!shell.ok()) return shell.TakeError();
        std::string seen;
        auto end = shell->ReadAll(
            [&](ShellStream stream, std::string_view data) {
              seen.append(stream == ShellStream::kOutput ? "" : "!").append(data);
              return true;
            },
            limits);
        if (!end.ok()) return end.TakeError();
        if (end->exit_status != 5 || seen != "out!err")
          return Error{ErrorCode::kMisuse, "another exit status"};
        return {};
      }));
  return all;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Operation& operation) {
  return out << operation.name;
}

std::size_t ReplyBytes(const Operation& operation) {
  std::size_t bytes = 0;
  for (const Exchange& exchange : operation.conversation) bytes += exchange.reply.size();
  return bytes;
}

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> all = [] {
    std::vector<Operation> operations = HostOperations();
    for (Operation& operation : DeviceOperations()) operations.push_back(std::move(operation));
    return operations;
  }();
  return all;
}

}  // namespace darokleim::adb_test

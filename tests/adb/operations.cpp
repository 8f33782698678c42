#include "tests/adb/operations.h"

#include <ostream>

#include "adb/device_list.h"
#include "adb/device_services.h"
#include "adb/features.h"
#include "adb/host_services.h"
#include "adb/ports.h"
#include "adb/shell.h"
#include "adb/sync_connection.h"

namespace darokleim::adb_test {

using namespace adb;
using namespace test;

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

Operation Talk(std::string name, std::vector<Exchange> conversation,
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
  all.push_back(Talk(
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
  all.push_back(Talk("WaitForState", {{Request("host-serial:X:wait-for-any-device"), "OKAYOKAY"}},
                     [](const auto& server, const auto& limits) {
                       return WaitForState(server, kPhone, ConnectionKind::kAny, "device", limits);
                     }));
  all.push_back(Talk("WaitForStateOverNetwork",
                     {{Request("host-serial:X:wait-for-local-offline"), "OKAYOKAY"}},
                     [](const auto& server, const auto& limits) {
                       return WaitForState(server, kPhone, ConnectionKind::kNetwork, "offline", limits);
                     }));
  all.push_back(Talk("TrackDevices", {{Request("host:track-devices"), "OKAY0000" + Request("X\toffline\n")}},
                     [](const auto& server, const auto& limits) -> Status {
                       auto tracker = DeviceTracker::Open(server, ListForm::kShort, limits);
                       if (!tracker.ok()) return tracker.TakeError();
                       if (Status none = Require(tracker->Next(limits), std::string()); !none.ok())
                         return none;
                       return Require(tracker->Next(limits), std::string("X\toffline\n"));
                     }));
  all.push_back(Talk(
      "RemoveForward", {{Request("host-serial:X:killforward:tcp:1"), "OKAYOKAY"}},
      [](const auto& server, const auto& limits) { return RemoveForward(server, kPhone, "tcp:1", limits); }));
  all.push_back(
      Talk("RemoveAllForwards", {{Request("host:killforward-all"), "OKAYOKAY"}},
           [](const auto& server, const auto& limits) { return RemoveAllForwards(server, limits); }));
  Operation forward =
      Talk("Forward", {{Request("host-serial:X:forward:norebind:tcp:0;tcp:2"), "OKAYOKAY000540001"}},
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
  all.push_back(Talk("Reverse", {kTransport, {Request("reverse:forward:tcp:1;tcp:2"), "OKAYOKAY000540001"}},
                     [](const auto& server, const auto& limits) -> Status {
                       auto port = AddReverse(server, kPhone, "tcp:1", "tcp:2", Rebind::kAllow, limits);
                       return port.ok() ? Status() : port.TakeError();
                     }));
  all.back().is_whole_at = [](std::size_t cut) { return cut == 12 + 8; };
  all.push_back(Talk(
      "RemoveReverse", {kTransport, {Request("reverse:killforward:tcp:1"), "OKAYOKAY"}},
      [](const auto& server, const auto& limits) { return RemoveReverse(server, kPhone, "tcp:1", limits); }));
  all.push_back(
      Talk("RemoveAllReverses", {kTransport, {Request("reverse:killforward-all"), "OKAYOKAY"}},
           [](const auto& server, const auto& limits) { return RemoveAllReverses(server, kPhone, limits); }));
  all.push_back(Talk("Reverses", {kTransport, {Request("reverse:list-forward"), "OKAY0003abc"}},
                     [](const auto& server, const auto& limits) {
                       return Require(QueryReverses(server, kPhone, limits), std::string("abc"));
                     }));
  all.push_back(
      Talk("ShellV2",
           {kTransport,
            {Request("shell,v2,TERM=xterm,raw:ls"), "OKAY"},
            {Packet(4, ""), Packet(1, "out") + Packet(2, "err") + Packet(1, "") + Packet(3, "\x05")}},
           [](const auto& server, const auto& limits) -> Status {
             auto shell = ShellSession::Start(server, kPhone, {.command = "ls", .terminal = "xterm"}, limits);
             if (!shell.ok()) return shell.TakeError();
             std::string output, errors;
             auto end = shell->ReadAll(
                 [&](ShellStream stream, std::string_view data) {
                   (stream == ShellStream::kOutput ? output : errors).append(data);
                   return true;
                 },
                 limits);
             if (!end.ok()) return end.TakeError();
             if (end->exit_status != 5 || output != "out" || errors != "err")
               return Error{ErrorCode::kMisuse, "another output or exit status"};
             return {};
           }));
  return all;
}

std::string Number(std::uint64_t value, size_t bytes = 4) {
  std::string text;
  for (size_t i = 0; i < bytes; ++i) text.push_back(static_cast<char>(value >> (8 * i)));
  return text;
}

std::string Message(const char (&id)[5], std::string_view bytes) {
  return id + Number(bytes.size()) + std::string(bytes);
}

// Mode 0100644, size 5, time 7; in the second form also other numbers.
std::string StatusBytes(bool second_form, std::uint32_t error = 0) {
  if (!second_form) return Number(0100644) + Number(5) + Number(7);
  return Number(error) + Number(11, 8) + Number(12, 8) + Number(0100644) + Number(13) + Number(14) +
         Number(15) + Number((5ull << 40) + 5, 8) + Number(16, 8) + Number(7, 8) + Number(17, 8);
}

std::string EntryBytes(bool second_form, std::string_view name) {
  return (second_form ? "DNT2" : "DENT") + StatusBytes(second_form) + Number(name.size()) + std::string(name);
}

std::string EndOfList(bool second_form) {
  return "DONE" + std::string(second_form ? kEntry2Size - 4 : kEntry1Size - 4, '\0');
}

FeatureSet Features(bool second_form) {
  return FeatureSet(second_form ? "shell_v2,stat_v2,ls_v2,sendrecv_v2" : "");
}

Operation Sync(std::string name, bool second_form, std::string request, std::string reply,
               std::function<Status(SyncConnection*, const Limits&)> call) {
  return Talk(
      name + (second_form ? "2" : "1"),
      {kTransport, {Request("sync:"), "OKAY"}, {std::move(request), std::move(reply)}},
      [second_form, call = std::move(call)](const ServerAddress& server, const Limits& limits) -> Status {
        auto sync = SyncConnection::Start(server, kPhone, Features(second_form), limits);
        if (!sync.ok()) return sync.TakeError();
        if (Status status = call(&*sync, limits); !status.ok()) return status;
        return sync->unanswered() == 0 ? Status() : Error{ErrorCode::kMisuse, "unanswered requests"};
      });
}

Status RequireStatus(Result<FileStatus> status, bool second_form) {
  if (!status.ok()) return status.TakeError();
  const std::uint64_t size = second_form ? (5ull << 40) + 5 : 5;
  const bool same = status->exists() && status->second_form == second_form && status->mode == 0100644 &&
                    status->size == size && status->modified == 7;
  const bool details = !second_form || (status->device == 11 && status->inode == 12 && status->links == 13 &&
                                        status->user == 14 && status->group == 15 && status->accessed == 16 &&
                                        status->changed == 17);
  return same && details ? Status() : Error{ErrorCode::kMisuse, "another status"};
}

// Two lists, sent ahead.
Status ReadTwoLists(SyncConnection* sync, const Limits& limits) {
  for (const char* path : {"/a", "/b"}) {
    if (Status status = sync->RequestList(path); !status.ok()) return status;
  }
  std::string seen;
  for (int i = 0; i < 2; ++i) {
    const auto receive = [&](const DirectoryEntry& entry) {
      seen.append(entry.name).append(entry.status.size >= 5 ? ";" : "?");
      return true;
    };
    if (Status status = sync->ReadList(receive, limits); !status.ok()) return status;
    seen += "|";
  }
  return seen == ".;one;|two;|" ? Status() : Error{ErrorCode::kMisuse, "other entries: " + seen};
}

Status SendTwoFiles(SyncConnection* sync, const Limits& limits) {
  for (const char* path : {"/a", "/b"}) {
    if (Status status = sync->BeginSend(path, 0100644, limits); !status.ok()) return status;
    if (Status status = sync->SendData("data", limits); !status.ok()) return status;
    if (Status status = sync->EndSend(9, limits); !status.ok()) return status;
  }
  return sync->AwaitSends(0, limits);
}

std::vector<Operation> SyncOperations() {
  std::vector<Operation> all;
  for (const bool second : {false, true}) {
    all.push_back(
        Sync("Stat", second, second ? Message("LST2", "/f") : Message("STAT", "/f"),
             (second ? "LST2" : "STAT") + StatusBytes(second), [second](auto* sync, const auto& limits) {
               return RequireStatus(sync->Stat("/f", SyncConnection::Links::kThemselves, limits), second);
             }));
    all.push_back(Sync("List", second,
                       second ? Message("LIS2", "/a") + Message("LIS2", "/b")
                              : Message("LIST", "/a") + Message("LIST", "/b"),
                       EntryBytes(second, ".") + EntryBytes(second, "one") + EndOfList(second) +
                           EntryBytes(second, "two") + EndOfList(second),
                       ReadTwoLists));
    all.push_back(
        Sync("Content", second, second ? Message("RCV2", "/f") + "RCV2" + Number(0) : Message("RECV", "/f"),
             Message("DATA", "one ") + Message("DATA", "") + Message("DATA", "two") + "DONE" + Number(0),
             [](auto* sync, const auto& limits) -> Status {
               std::string content;
               Status status = sync->Receive(
                   "/f",
                   [&](std::string_view data) {
                     content += data;
                     return true;
                   },
                   limits);
               if (!status.ok() || content == "one two") return status;
               return Error{ErrorCode::kMisuse, "another content"};
             }));
    std::string sent;
    for (const std::string path : {"/a", "/b"}) {
      sent += second ? Message("SND2", path) + "SND2" + Number(0100644) + Number(0)
                     : Message("SEND", path + ",33188");
      sent += Message("DATA", "data") + "DONE" + Number(9);
    }
    all.push_back(Sync("Send", second, sent, "OKAY" + Number(0) + "OKAY" + Number(0), SendTwoFiles));
  }
  all.push_back(Sync("StatTarget", true, Message("STA2", "/f"), "STA2" + StatusBytes(true),
                     [](auto* sync, const auto& limits) {
                       return RequireStatus(sync->Stat("/f", SyncConnection::Links::kFollowed, limits), true);
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
    for (Operation& operation : SyncOperations()) operations.push_back(std::move(operation));
    return operations;
  }();
  return all;
}

}  // namespace darokleim::adb_test

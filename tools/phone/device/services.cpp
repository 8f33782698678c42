#include "tools/phone/device/services.h"

#include <signal.h>

#include <chrono>
#include <cstdlib>
#include <string_view>
#include <thread>
#include <utility>

#include "tools/phone/common/address.h"
#include "tools/phone/common/device_link.h"
#include "tools/phone/common/faults.h"
#include "tools/phone/common/io.h"
#include "tools/phone/common/wire.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/limited_connection.h"
#include "tools/phone/device/shell_service.h"
#include "tools/phone/device/sync_service.h"

namespace darokleim::phone {

namespace {

void AnswerAndClose(base::UniqueFd stream, const std::string& text) {
  SendOkay(stream.get());
  WriteAll(stream.get(), text.data(), text.size());
  FinishStream(std::move(stream));
}

base::UniqueFd WithFaults(base::UniqueFd stream) {
  const Faults faults(kSetupFolder);
  if (const auto seconds = faults.Value(fault::kSlow)) {
    std::this_thread::sleep_for(std::chrono::duration<double>(std::strtod(seconds->c_str(), nullptr)));
  }
  return LimitConnection(std::move(stream), {ParseSize(faults.Value(fault::kDropAfter).value_or("")),
                                             ParseSize(faults.Value(fault::kBandwidth).value_or(""))});
}

// The services that answer once and then change the phone or its connection.
bool AnswerAndAct(const Request& request, base::UniqueFd* stream) {
  std::string_view service = request.service;
  if (service == "reconnect") {
    AnswerAndClose(std::move(*stream), "done");
    SendPacket(request.link, LinkMessage::kReconnect, "");
  } else if (TakePrefix(&service, "reboot:")) {
    AnswerAndClose(std::move(*stream), "");
    SendPacket(request.link, LinkMessage::kReboot, std::string(service));
  } else if (TakePrefix(&service, "tcpip:")) {
    AnswerAndClose(std::move(*stream), "restarting in TCP mode port: " + std::string(service) + "\n");
    SendPacket(request.link, LinkMessage::kReconnect, "");
  } else if (service == "usb:") {
    AnswerAndClose(std::move(*stream), "restarting in USB mode\n");
    SendPacket(request.link, LinkMessage::kReconnect, "");
  } else if (service == "root:") {
    AnswerAndClose(std::move(*stream), "adbd cannot run as root in production builds\n");
  } else if (service == "unroot:") {
    AnswerAndClose(std::move(*stream), "adbd not running as root\n");
  } else if (service == "remount:") {
    AnswerAndClose(std::move(*stream), "Not running as root. Try \"adb root\" first.\n");
  } else {
    return false;
  }
  return true;
}

}  // namespace

void RunService(const Request& request, base::UniqueFd stream) {
  stream = WithFaults(std::move(stream));
  if (const auto shell = ParseShellService(request.service, request.legacy)) {
    RunShell(*shell, std::move(stream));
  } else if (request.service == "sync:") {
    SyncService(std::move(stream), request.legacy).Run();
  } else if (!request.answer.empty()) {
    AnswerAndClose(std::move(stream), request.answer);
  } else if (const auto address = SocketAddress::Parse(request.service)) {
    const base::UniqueFd program = address->Connect();
    if (!program.valid()) {
      SendFail(stream.get(), "closed");
    } else if (SendOkay(stream.get())) {
      Relay(stream.get(), program.get());
    }
  } else if (!AnswerAndAct(request, &stream)) {
    SendFail(stream.get(), "closed");
  }
}

void ConnectToPhoneAddress(const Request& request, base::UniqueFd stream) {
  const auto address = SocketAddress::Parse(request.service);
  if (!address) return;
  stream = WithFaults(std::move(stream));
  const base::UniqueFd program = address->Connect();
  if (program.valid()) Relay(stream.get(), program.get());
}

}  // namespace darokleim::phone

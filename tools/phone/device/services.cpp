#include "device/services.h"

#include <string_view>

#include "common/device_link.h"
#include "common/io.h"
#include "common/wire.h"
#include "device/shell_service.h"
#include "device/sync_service.h"

namespace darokleim::phone {

namespace {

void SayDone(const Request& request, UniqueFd stream, LinkMessage then) {
  constexpr std::string_view kDone = "done";
  SendOkay(stream.get());
  WriteAll(stream.get(), kDone.data(), kDone.size());
  FinishStream(std::move(stream));
  SendPacket(request.link, then, "");
}

}  // namespace

void RunService(const Request& request, UniqueFd stream) {
  std::string_view service = request.service;
  if (const auto shell = ParseShellService(service, request.legacy)) {
    RunShell(*shell, std::move(stream));
  } else if (service == "sync:") {
    SyncService(std::move(stream)).Run();
  } else if (service == "reconnect") {
    SayDone(request, std::move(stream), LinkMessage::kReconnect);
  } else {
    SendFail(stream.get(), "closed");
  }
}

void ConnectToPhonePort(const Request&, UniqueFd) {}

}  // namespace darokleim::phone

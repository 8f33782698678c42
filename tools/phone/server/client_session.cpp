#include "tools/phone/server/client_session.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <optional>
#include <string>

#include "base/little_endian.h"
#include "tools/phone/common/io.h"
#include "tools/phone/common/wire.h"
#include "tools/phone/server/control.h"

namespace darokleim::phone {

namespace {

// What adb 29 speaks; with any other number the client kills the server and starts its own.
constexpr std::string_view kProtocolVersion = "0029";

// Waits for a change of the list; false when the client has closed its connection meanwhile.
bool WaitForChange(ChangeFeed::Watcher* watcher, int client) {
  for (;;) {
    std::array<pollfd, 2> ends = {{{watcher->descriptor(), POLLIN, 0}, {client, POLLIN, 0}}};
    if (poll(ends.data(), ends.size(), -1) < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    if (ends[1].revents != 0) return false;
    watcher->Acknowledge();
    return true;
  }
}

std::string WithPort(std::string_view address) {
  constexpr char kUsualPort[] = ":5555";
  return std::string(address) + (address.find(':') == std::string_view::npos ? kUsualPort : "");
}

void DiscardReceived(int connection) {
  std::array<char, 4096> bytes;
  while (recv(connection, bytes.data(), bytes.size(), MSG_DONTWAIT) > 0) {
  }
}

// adb connect ADDRESS: attaches the phone that has this serial, and returns the answer.
std::string ConnectToPhone(std::string_view address, const PhoneList& phones) {
  const std::string serial = WithPort(address);
  Phone* phone = phones.PhoneWithSerial(serial);
  if (phone == nullptr) return "failed to connect to '" + serial + "': Connection refused";
  if (phone->transport()) return "already connected to " + serial;
  phone->Plug();
  return "connected to " + serial;
}

// adb disconnect [ADDRESS]: without an address every phone over the network. Nothing when there is no such phone.
std::optional<std::string> DisconnectFromPhone(std::string_view address, const PhoneList& phones) {
  const std::string serial = WithPort(address);
  bool found = false;
  for (const auto& phone : phones.phones()) {
    const auto transport = phone->transport();
    if (!transport || !transport->over_network || (!address.empty() && phone->serial() != serial)) continue;
    phone->Unplug();
    found = true;
  }
  if (address.empty()) return "disconnected everything";
  return found ? std::optional("disconnected " + serial) : std::nullopt;
}

}  // namespace

void ClientSession::Run() {
  for (;;) {
    const auto request = ReadRequest(fd());
    if (!request || !Answer(*request)) return;
  }
}

bool ClientSession::Answer(const std::string& request) {
  if (const auto host = ParseHostRequest(request, *phones_)) return AnswerHost(*host);
  if (request.rfind("host", 0) == 0) {
    SendFail(fd(), "unknown host service");
  } else if (selected_ == nullptr) {
    SendFail(fd(), "device offline (no transport)");
  } else {
    HandOver(request);
  }
  return false;
}

bool ClientSession::AnswerHost(HostRequest request) {
  if (selected_ != nullptr && request.target.kind == Target::Kind::kAny) {
    request.target.kind = Target::Kind::kId;
    request.target.id = selected_id_;
  }
  std::string_view service = request.service;
  if (const auto target = ParseTransportService(service, request.target)) {
    return SelectPhone(*target, service.rfind("tport:", 0) == 0);
  }
  if (service == "version") {
    SendOkayAndText(fd(), kProtocolVersion);
  } else if (service == "kill") {
    kill_server_();
  } else if (service == "devices" || service == "devices-l") {
    SendOkayAndText(fd(), phones_->Listing(service == "devices-l"));
  } else if (service == "track-devices" || service == "track-devices-l") {
    TrackDevices(service == "track-devices-l");
  } else if (service == "host-features") {
    SendOkayAndText(fd(), FeaturesOf(release_));
  } else if (service == "reconnect") {
    AnswerReconnect(request.target);
  } else if (service == "reconnect-offline") {
    AnswerReconnectOffline();
  } else if (service == "list-forward") {
    SendOkayAndText(fd(), forwards_->Listing());
  } else if (TakePrefix(&service, kControlPrefix)) {
    AnswerControl(phones_, service, fd());
  } else if (TakePrefix(&service, "connect:")) {
    SendOkayAndText(fd(), ConnectToPhone(service, *phones_));
  } else if (TakePrefix(&service, "disconnect:")) {
    AnswerDisconnect(service);
  } else if (TakePrefix(&service, "wait-for-")) {
    AnswerWaitFor(service, request.target);
  } else {
    AnswerAboutPhone(request);
  }
  return false;
}

bool ClientSession::SelectPhone(const Target& target, bool with_id) {
  const Found found = phones_->Find(target);
  if (found.phone == nullptr) {
    SendFail(fd(), found.error);
    return false;
  }
  selected_ = found.phone;
  selected_id_ = found.transport.id;
  // The real server loses what arrives together with this request: a service in the same write gets no answer.
  DiscardReceived(fd());
  std::string id;
  if (with_id) base::PutLe64(&id, found.transport.id);
  return SendOkay(fd()) && WriteAll(fd(), id.data(), id.size());
}

void ClientSession::AnswerAboutPhone(const HostRequest& request) {
  const Found found = phones_->Find(request.target);
  if (found.phone == nullptr) {
    SendFail(fd(), found.error);
  } else if (request.service == "features") {
    SendOkayAndText(fd(), FeaturesThrough(release_, found.transport.generation));
  } else if (request.service == "get-state") {
    SendOkayAndText(fd(), WordsOf(found.transport.state));
  } else if (request.service == "get-serialno") {
    SendOkayAndText(fd(), found.transport.serial);
  } else if (request.service == "get-devpath") {
    SendOkayAndText(fd(), found.transport.bus.empty() ? "unknown" : found.transport.bus);
  } else if (!AnswerForward(request.service, found.transport.serial)) {
    SendFail(fd(), "unknown host service");
  }
}

// The first OKAY is for the request, the second for its outcome.
bool ClientSession::AnswerForward(std::string_view service, const std::string& serial) {
  if (service == "killforward-all") {
    forwards_->RemoveAll();
    SendOkay(fd());
    SendOkay(fd());
  } else if (TakePrefix(&service, "killforward:")) {
    if (forwards_->Remove(std::string(service))) {
      SendOkay(fd());
      SendOkay(fd());
    } else {
      SendFail(fd(), "listener '" + std::string(service) + "' not found");
    }
  } else if (TakePrefix(&service, "forward:")) {
    AddForward(service, serial);
  } else {
    return false;
  }
  return true;
}

void ClientSession::AddForward(std::string_view addresses, const std::string& serial) {
  const bool rebind = !TakePrefix(&addresses, "norebind:");
  const std::vector<std::string> pieces = Split(addresses, ';');
  if (pieces.size() != 2 || pieces[0].empty() || pieces[1].empty()) {
    SendFail(fd(), "bad forward: " + std::string(addresses));
    return;
  }
  uint16_t port = 0;
  const std::string refusal = forwards_->Add(serial, pieces[0], pieces[1], rebind, &port);
  if (!refusal.empty()) {
    SendFail(fd(), refusal);
    return;
  }
  SendOkay(fd());
  SendOkay(fd());
  // Also when the client named it.
  if (port != 0) SendText(fd(), std::to_string(port));
}

void ClientSession::AnswerReconnect(const Target& target) {
  const Found found = phones_->Find(target, /*any_state=*/true);
  if (found.phone == nullptr) {
    SendOkayAndText(fd(), found.error);
    return;
  }
  found.phone->Reconnect();
  SendOkayAndText(fd(), "reconnecting " + found.transport.serial + " [" +
                            std::string(WordsOf(found.transport.state)) + "]\n");
}

void ClientSession::AnswerReconnectOffline() {
  std::string answer;
  for (const auto& phone : phones_->phones()) {
    const auto transport = phone->transport();
    if (!transport) continue;
    if (transport->state != ConnectionState::kOffline && transport->state != ConnectionState::kUnauthorized)
      continue;
    phone->Reconnect();
    if (!answer.empty()) answer += "\n";
    answer += "reconnecting " + transport->serial;
  }
  SendOkayAndText(fd(), answer);
}

void ClientSession::AnswerDisconnect(std::string_view address) {
  const auto answer = DisconnectFromPhone(address, *phones_);
  if (answer) {
    SendOkayAndText(fd(), *answer);
  } else {
    SendFail(fd(), "no such device '" + std::string(address) + "'");
  }
}

// "any-device", "usb-recovery" …: a kind of connection and a state.
void ClientSession::AnswerWaitFor(std::string_view condition, Target target) {
  const size_t dash = condition.find('-');
  const std::string_view kind = condition.substr(0, dash);
  const std::string_view state = dash == std::string_view::npos ? "" : condition.substr(dash + 1);
  const auto wanted = ParseConnectionState(state);
  if (!wanted && state != "any" && state != "disconnect") {
    SendFail(fd(), "unknown state " + std::string(state));
    return;
  }
  if (target.kind == Target::Kind::kAny && kind == "usb") target.kind = Target::Kind::kUsb;
  if (target.kind == Target::Kind::kAny && kind == "local") target.kind = Target::Kind::kNetwork;

  const auto watcher = phones_->changes().Watch();
  if (watcher == nullptr || !SendOkay(fd())) return;
  for (;;) {
    const Found found = phones_->Find(target, /*any_state=*/true);
    const bool there = found.phone != nullptr;
    if (state == "disconnect" ? !there : there && (state == "any" || found.transport.state == *wanted)) {
      SendOkay(fd());
      return;
    }
    if (!WaitForChange(watcher.get(), fd())) return;
  }
}

void ClientSession::TrackDevices(bool with_details) {
  const auto watcher = phones_->changes().Watch();
  if (watcher == nullptr || !SendOkay(fd())) return;
  std::string shown;
  for (bool first = true;; first = false) {
    std::string listing = phones_->Listing(with_details);
    if (first || listing != shown) {
      if (!SendText(fd(), listing)) return;
      shown = std::move(listing);
    }
    if (!WaitForChange(watcher.get(), fd())) return;
  }
}

void ClientSession::HandOver(const std::string& service) {
  if (!selected_->Open(LinkMessage::kOpen, service, *connection_)) SendFail(fd(), "closed");
}

}  // namespace darokleim::phone

#include "tools/phone/server/network_requests.h"

namespace darokleim::phone {

namespace {

std::string WithPort(std::string_view address) {
  constexpr char kUsualPort[] = ":5555";
  return std::string(address) + (address.find(':') == std::string_view::npos ? kUsualPort : "");
}

}  // namespace

std::string ConnectToPhone(std::string_view address, const PhoneList& phones) {
  const std::string serial = WithPort(address);
  Phone* phone = phones.PhoneWithSerial(serial);
  if (phone == nullptr) return "failed to connect to '" + serial + "': Connection refused";
  if (phone->transport()) return "already connected to " + serial;
  phone->Plug();
  return "connected to " + serial;
}

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

}  // namespace darokleim::phone

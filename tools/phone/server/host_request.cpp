#include "tools/phone/server/host_request.h"

#include <algorithm>
#include <cctype>

#include "tools/phone/common/numbers.h"
#include "tools/phone/common/wire.h"

namespace darokleim::phone {

namespace {

Target OfKind(Target::Kind kind) {
  Target target;
  target.kind = kind;
  return target;
}

Target WithSerial(std::string_view serial) {
  Target target = OfKind(Target::Kind::kSerial);
  target.serial = serial;
  return target;
}

// Where the serial before ":SERVICE" ends: a serial may contain colons itself (an address and a port,
// or a name such as model:X).
size_t SerialLength(std::string_view text, const PhoneList& phones) {
  for (const auto& phone : phones.phones()) {
    const std::string& serial = phone->serial();
    if (text.size() > serial.size() && text[serial.size()] == ':' &&
        text.substr(0, serial.size()) == serial) {
      return serial.size();
    }
  }
  size_t start = 0;
  for (const std::string_view prefix : {"usb:", "product:", "model:", "device:", "tcp:", "udp:"}) {
    if (text.substr(0, prefix.size()) == prefix) start = prefix.size();
  }
  const size_t colon = text.find(':', start);
  if (colon == std::string_view::npos) return colon;
  const size_t next = text.find(':', colon + 1);
  const std::string_view port =
      text.substr(colon + 1, next == std::string_view::npos ? next : next - colon - 1);
  return next != std::string_view::npos && ParseNumber<uint64_t>(port) ? next : colon;
}

}  // namespace

std::optional<HostRequest> ParseHostRequest(std::string_view request, const PhoneList& phones) {
  HostRequest parsed;
  if (TakePrefix(&request, "host:")) {
    parsed.target = OfKind(Target::Kind::kAny);
  } else if (TakePrefix(&request, "host-usb:")) {
    parsed.target = OfKind(Target::Kind::kUsb);
  } else if (TakePrefix(&request, "host-local:")) {
    parsed.target = OfKind(Target::Kind::kNetwork);
  } else if (TakePrefix(&request, "host-serial:")) {
    const size_t length = SerialLength(request, phones);
    if (length == std::string_view::npos) return std::nullopt;
    parsed.target = WithSerial(request.substr(0, length));
    request.remove_prefix(length + 1);
  } else if (TakePrefix(&request, "host-transport-id:")) {
    const size_t colon = request.find(':');
    const auto id = ParseNumber<uint64_t>(request.substr(0, colon));
    if (colon == std::string_view::npos || !id) return std::nullopt;
    parsed.target = OfKind(Target::Kind::kId);
    parsed.target.id = *id;
    request.remove_prefix(colon + 1);
  } else {
    return std::nullopt;
  }
  parsed.service = request;
  return parsed;
}

std::optional<Target> ParseTransportService(std::string_view service, const Target& from_prefix) {
  if (TakePrefix(&service, "tport:")) {
    if (TakePrefix(&service, "serial:")) return WithSerial(service);
    if (service == "usb") return OfKind(Target::Kind::kUsb);
    if (service == "local") return OfKind(Target::Kind::kNetwork);
    return from_prefix;
  }
  if (TakePrefix(&service, "transport-id:")) {
    Target target = OfKind(Target::Kind::kId);
    target.id = ParseNumber<uint64_t>(service).value_or(0);
    return target;
  }
  if (service == "transport-usb") return OfKind(Target::Kind::kUsb);
  if (service == "transport-local") return OfKind(Target::Kind::kNetwork);
  if (service == "transport-any") return from_prefix;
  if (TakePrefix(&service, "transport:")) return WithSerial(service);
  return std::nullopt;
}

}  // namespace darokleim::phone

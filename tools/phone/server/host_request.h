#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_HOST_REQUEST_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_HOST_REQUEST_H

#include <optional>
#include <string>
#include <string_view>

#include "tools/phone/server/phone_list.h"

namespace darokleim::phone {

// A request to the server itself: host:SERVICE, host-usb:, host-local:, host-serial:SERIAL:SERVICE or
// host-transport-id:N:SERVICE.
struct HostRequest {
  Target target;
  std::string service;
};

// Nothing when the request is for the selected phone instead, or is malformed.
std::optional<HostRequest> ParseHostRequest(std::string_view request, const PhoneList& phones);

// The phone that transport…, or tport:…, selects. Nothing for other services.
std::optional<Target> ParseTransportService(std::string_view service, const Target& from_prefix);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_HOST_REQUEST_H

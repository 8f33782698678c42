#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_NETWORK_REQUESTS_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_NETWORK_REQUESTS_H

#include <optional>
#include <string>
#include <string_view>

#include "tools/phone/server/phone_list.h"

namespace darokleim::phone {

// adb connect ADDRESS: attaches the phone that has this serial, and says what came of it.
std::string ConnectToPhone(std::string_view address, const PhoneList& phones);

// adb disconnect [ADDRESS]: without an address every phone over the network. Nothing when there is no such phone.
std::optional<std::string> DisconnectFromPhone(std::string_view address, const PhoneList& phones);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_NETWORK_REQUESTS_H

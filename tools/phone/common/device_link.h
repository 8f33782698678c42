#ifndef DAROKLEIM_TOOLS_PHONE_COMMON_DEVICE_LINK_H
#define DAROKLEIM_TOOLS_PHONE_COMMON_DEVICE_LINK_H

#include <optional>
#include <string>

#include "base/unique_fd.h"
#include "tools/phone/common/io.h"

namespace darokleim::phone {

// The cable between the server and one phone: a packet socket whose messages may carry a descriptor. The
// client's own connection travels to the phone this way, so no byte of a stream passes through the server.
enum class LinkMessage : char {
  // server to phone
  kOpen = 'o',         // text: the service; descriptor: the client's connection, which expects OKAY or FAIL
  kConnect = 'c',      // text: an address on the phone; descriptor: an accepted host connection (forward)
  kDropAll = 'd',      // the cable was pulled: every stream ends
  kPowerButton = 'p',  // reboot
  // phone to server
  kReady = 'r',      // the phone has booted
  kReverse = 'v',    // text: an address on the host; descriptor: an accepted phone connection (reverse)
  kReboot = 'b',     // text: what to boot into
  kReconnect = 'n',  // the phone's end asks to be attached again
};

struct LinkPacket {
  LinkMessage message;
  std::string text;
  base::UniqueFd descriptor;
};

// {server's end, phone's end}
std::optional<FdPair> MakeDeviceLink();

bool SendPacket(int link, LinkMessage message, const std::string& text, int descriptor = -1);
// Waits for the next packet; nothing once the other end is closed.
std::optional<LinkPacket> ReceivePacket(int link);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_COMMON_DEVICE_LINK_H

#ifndef DAROKLEIM_TOOLS_PHONE_COMMON_ADDRESS_H
#define DAROKLEIM_TOOLS_PHONE_COMMON_ADDRESS_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "common/unique_fd.h"

namespace darokleim::phone {

// The port of "tcp:PORT"; nothing for another address.
std::optional<uint16_t> ParseTcpAddress(std::string_view address);

// A connection to a port of this side's loopback; not valid when nobody listens.
UniqueFd ConnectToLoopback(uint16_t port);

// A socket listening on the loopback. Port 0: one that is free. Not valid, with errno set, when it cannot be had;
// otherwise `bound` gets the port.
UniqueFd ListenOnLoopback(uint16_t port, uint16_t* bound);

// The next connection, without delay for small packets; not valid when it has gone again.
UniqueFd AcceptConnection(int listener);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_COMMON_ADDRESS_H

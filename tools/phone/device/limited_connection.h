#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_LIMITED_CONNECTION_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_LIMITED_CONNECTION_H

#include <cstdint>
#include <optional>

#include "base/unique_fd.h"

namespace darokleim::phone {

// Bytes are counted in both directions together.
struct ConnectionLimits {
  std::optional<uint64_t> bytes;           // the connection breaks after them
  std::optional<uint64_t> bytes_a_second;  // at least 1
};

// Relays between the client and its service within these limits; no relay runs if there are none. Returns the connection that the
// service uses in place of `client`.
base::UniqueFd LimitConnection(base::UniqueFd client, const ConnectionLimits& limits);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_LIMITED_CONNECTION_H

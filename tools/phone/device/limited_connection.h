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

// Puts a relay between the client and what serves it that keeps these limits; without a limit there is no relay. The result is
// the end to serve instead.
base::UniqueFd LimitConnection(base::UniqueFd client, const ConnectionLimits& limits);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_LIMITED_CONNECTION_H

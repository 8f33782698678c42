#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_BREAKING_CONNECTION_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_BREAKING_CONNECTION_H

#include <cstdint>

#include "base/unique_fd.h"

namespace darokleim::phone {

// Puts a relay between the client and what serves it that breaks the connection after so many bytes, counted in
// both directions together. The result is the end to serve instead.
base::UniqueFd BreakAfter(base::UniqueFd client, uint64_t bytes);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_BREAKING_CONNECTION_H

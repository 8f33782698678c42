#ifndef DAROKLEIM_SRC_DEVICE_IP_ADDRESS_H
#define DAROKLEIM_SRC_DEVICE_IP_ADDRESS_H

// What the device's ip command prints.

#include <optional>
#include <string_view>

namespace darokleim::sdk {

// Whether a text is an IPv4 address with its prefix length, as the whole text matches
//     ^\d+\.\d+\.\d+\.\d+/\d+$
// with a constant amount of stack: numbers may have any length.
bool IsAddressWithPrefix(std::string_view text);

// The address in the `inet` lines of the output: its second word, where only a space ends a word. So only
// the first line counts, and only when the address is followed by a space.
std::optional<std::string_view> FindAddress(std::string_view output);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_DEVICE_IP_ADDRESS_H

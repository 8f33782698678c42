// Quoting for the device's shell.
#ifndef DAROKLEIM_PLATFORM_CHANNEL_DEVICE_QUOTING_H
#define DAROKLEIM_PLATFORM_CHANNEL_DEVICE_QUOTING_H

#include <string>
#include <string_view>

namespace darokleim::channel {

// text between single quotes, so that a POSIX shell reads it as one word; a single quote becomes '\''.
std::string QuoteForDevice(std::string_view text);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_PLATFORM_CHANNEL_DEVICE_QUOTING_H

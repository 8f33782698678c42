#include "src/core/channel_buffer.h"

#include <stdexcept>

#include "src/platform/command_channel.h"

namespace darokleim::sdk {

std::string_view ChannelText(const char* buffer, int length) {
  if (!buffer) return {};
  if (length < 0) throw std::length_error("channel output");
  return {buffer, static_cast<std::size_t>(length)};
}

ChannelBuffer::~ChannelBuffer() {
  if (buffer_) ReleaseAdbOutBuffer(buffer_);
}

}  // namespace darokleim::sdk

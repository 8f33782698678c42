// A text that the command channel hands out and wants back.
#ifndef DAROKLEIM_SRC_CORE_CHANNEL_BUFFER_H
#define DAROKLEIM_SRC_CORE_CHANNEL_BUFFER_H

#include <string_view>

namespace darokleim::sdk {

// The length bytes at buffer, nothing for null. Throws std::length_error for a length below 0, which no
// channel may report.
std::string_view ChannelText(const char* buffer, int length);

// Owns one such text and gives it back when it goes out of scope.
class ChannelBuffer {
 public:
  ChannelBuffer() = default;
  ~ChannelBuffer();
  ChannelBuffer(const ChannelBuffer&) = delete;
  ChannelBuffer& operator=(const ChannelBuffer&) = delete;

  // For the channel to fill.
  char** out() { return &buffer_; }
  int* out_len() { return &length_; }

  // False when the channel handed out nothing; an empty text is a text.
  bool has_text() const { return buffer_ != nullptr; }
  // Gone with this object.
  std::string_view text() const { return ChannelText(buffer_, length_); }
  // The text up to its first zero byte.
  std::string_view c_text() const { return text().substr(0, text().find('\0')); }

 private:
  char* buffer_ = nullptr;
  int length_ = 0;
};

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_CHANNEL_BUFFER_H

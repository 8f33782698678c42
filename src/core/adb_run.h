#ifndef DAROKLEIM_SRC_CORE_ADB_RUN_H
#define DAROKLEIM_SRC_CORE_ADB_RUN_H

// One run of adb through the command channel, and what it printed.

#include <string>
#include <string_view>

#include "src/core/text.h"

namespace darokleim::sdk {

// Owns a text that the command channel handed out, and gives it back when it goes out of scope.
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
  // Valid as long as this object. Throws std::length_error for a negative length, which no channel may report.
  std::string_view text() const { return TextOf(buffer_, length_); }
  // The text up to its first zero byte.
  std::string_view c_text() const { return text().substr(0, text().find('\0')); }

 private:
  char* buffer_ = nullptr;
  int length_ = 0;
};

// Runs adb once and owns its output.
class AdbRun {
 public:
  // Runs adb and waits for it. cancel is passed to the channel unchanged and may be null.
  AdbRun(const std::string& args, const bool* cancel);

  // The channel's status: 0 when adb ran and delivered its output.
  int status() const { return status_; }
  // False when the channel handed out no buffer at all; an empty buffer is output like any other.
  bool has_output() const { return buffer_.has_text(); }
  // What adb printed, in the channel's buffer; valid as long as this object. Empty without output.
  std::string_view output() const { return buffer_.text(); }
  // The output up to its first zero byte.
  std::string_view output_as_c_text() const { return buffer_.c_text(); }
  // The result code of a command without a success marker of its own: what the classifier finds in the output,
  // or the channel's status when it finds nothing or there is no output.
  int Classify() const;

 private:
  ChannelBuffer buffer_;
  int status_;
};

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_ADB_RUN_H

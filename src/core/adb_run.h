// One run of adb through the command channel, and what came back.
#ifndef DAROKLEIM_SRC_CORE_ADB_RUN_H
#define DAROKLEIM_SRC_CORE_ADB_RUN_H

#include <string>
#include <string_view>

#include "src/core/channel_buffer.h"

namespace darokleim::sdk {

// Owns the channel's buffer and gives it back when it goes out of scope.
class AdbRun {
 public:
  // Runs adb and waits. cancel is handed on untouched and may be null.
  AdbRun(const std::string& args, const bool* cancel);

  // The channel's own value: 0 when adb ran and delivered.
  int status() const { return status_; }
  // False when the channel handed out no buffer at all; an empty buffer is output like any other.
  bool has_output() const { return buffer_.has_text(); }
  // What adb printed, in the channel's buffer: gone with this object. Empty when there was no output.
  std::string_view output() const { return buffer_.text(); }
  // The output up to its first zero byte.
  std::string_view output_as_c_text() const { return buffer_.c_text(); }
  // The result code of a command without a success marker of its own: what the classifier says of the
  // output, or the channel's value when there is none.
  int Classify() const;

 private:
  ChannelBuffer buffer_;
  int status_;
};

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_ADB_RUN_H

// A second pipe between adb's pipe and the reader, for large output.
#ifndef DAROKLEIM_CHANNEL_PROCESS_PIPE_RELAY_H
#define DAROKLEIM_CHANNEL_PROCESS_PIPE_RELAY_H

#include <sys/types.h>

#include "base/unique_fd.h"

namespace darokleim::channel {

// What is in adb's pipe is moved over (pages change hands, nothing is copied) and read from there. A read holds the
// lock of its pipe while it copies, which keeps adb from writing: with the relay both copy at the same time. macOS
// cannot move pages between pipes and never has a relay.
class PipeRelay {
 public:
  // Whether a read of so many bytes shows that the command fills its pipe.
  static bool IsWorthwhileAfter(size_t bytes_read);

  // Enlarges adb's pipe and opens the relay. Where the system refuses either, the relay remains closed.
  void Open(int adb_output);
  bool IsOpen() const { return in_.valid(); }
  void Close() {
    in_.Reset();
    out_.Reset();
  }

  // Moves what is in adb's pipe into the relay. Returns the number of bytes; 0 at the end; -1 with errno set.
  ssize_t MoveFrom(int adb_output);
  // The end to read from.
  int output() const { return out_.get(); }

 private:
  base::UniqueFd in_, out_;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_PIPE_RELAY_H

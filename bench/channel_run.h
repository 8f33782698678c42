// The channel as a benchmark runs it: bench_channel_child in the place of adb.
#ifndef DAROKLEIM_BENCH_CHANNEL_RUN_H
#define DAROKLEIM_BENCH_CHANNEL_RUN_H

#include <cstdio>
#include <cstdlib>
#include <string>

#include "src/platform/command_channel.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::bench {

// Started once in a process; the log goes with it.
class StartedChannel {
 public:
  StartedChannel() {
    if (InitAdbCommuncation2Server(DAROKLEIM_CHANNEL_CHILD, log_directory_.path().c_str(), nullptr) != 0)
      abort();
  }

  // Has that many bytes printed. Ends the program when the command fails or prints another number of bytes.
  void Run(size_t bytes) const {
    std::string arguments = " ";
    arguments += std::to_string(bytes);
    char* out = nullptr;
    int length = 0;
    const int status = ExecuteAdbCommandSynchronization(arguments.c_str(), nullptr, &out, &length);
    ReleaseAdbOutBuffer(out);
    if (status == 0 && static_cast<size_t>(length) == bytes) return;
    std::fprintf(stderr, "status %d, %d bytes\n", status, length);
    exit(1);
  }

 private:
  const test::TemporaryDirectory log_directory_;
};

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_CHANNEL_RUN_H

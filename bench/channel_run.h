// One command through the channel, as a benchmark runs it.
#ifndef DAROKLEIM_BENCH_CHANNEL_RUN_H
#define DAROKLEIM_BENCH_CHANNEL_RUN_H

#include <cstdio>
#include <cstdlib>

#include "platform/command_channel.h"

namespace darokleim::bench {

// Ends the program when the command fails or prints another number of bytes.
inline void RunThroughChannel(const char* args, size_t expected) {
  char* out = nullptr;
  int length = 0;
  const int status = ExecuteAdbCommandSynchronization(args, nullptr, &out, &length);
  ReleaseAdbOutBuffer(out);
  if (status == 0 && static_cast<size_t>(length) == expected) return;
  std::fprintf(stderr, "status %d, %d bytes\n", status, length);
  exit(1);
}

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_CHANNEL_RUN_H

// 1 GiB of output through the channel, against a loop that reads the same pipe into memory that is already
// there.
#include <cstring>
#include <memory>

#include "bench/channel_floor.h"
#include "bench/channel_run.h"
#include "bench/report.h"

using namespace darokleim::bench;

int main() {
  constexpr size_t kOutput = 1024 * 1024 * 1024;
  constexpr int kLargestPipe = 1024 * 1024;
  constexpr int kRepetitions = 9;
  const StartedChannel channel;
  const std::unique_ptr<char[]> memory(new char[kOutput + 1]);
  memset(memory.get(), 1, kOutput + 1);
  Print({Compare(
      {"1 GiB of output", "reading the same pipe into memory already there", 1.0, kRepetitions},
      [&] { channel.Run(kOutput); },
      [&] {
        if (SpawnReadWait(DAROKLEIM_CHANNEL_CHILD, "1073741824", memory.get(), kOutput + 1, kLargestPipe) !=
            kOutput) {
          abort();
        }
      })});
}

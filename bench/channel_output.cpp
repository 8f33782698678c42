// 1 GiB of output through the channel, against a loop that reads the same pipe into memory that is already
// there.
#include <stdlib.h>

#include <cstring>
#include <filesystem>
#include <memory>

#include "channel_floor.h"
#include "channel_run.h"
#include "report.h"

using namespace darokleim::bench;

int main(int argc, char** argv) {
  constexpr size_t kOutput = 1024 * 1024 * 1024;
  constexpr int kLargestPipe = 1024 * 1024;
  constexpr int kRepetitions = 9;
  char log_dir[] = "/tmp/darokleim-bench-XXXXXX";
  if (mkdtemp(log_dir) == nullptr) return 1;
  InitAdbCommuncation2Server(DAROKLEIM_CHANNEL_CHILD, log_dir, nullptr);
  const std::unique_ptr<char[]> memory(new char[kOutput + 1]);
  memset(memory.get(), 1, kOutput + 1);
  Print(argc, argv,
        {Compare(
            "channel: 1 GiB of output", 1.0, kRepetitions, [] { RunThroughChannel(" 1073741824", kOutput); },
            [&] {
              if (SpawnReadWait(DAROKLEIM_CHANNEL_CHILD, "1073741824", memory.get(), kOutput + 1,
                                kLargestPipe) != kOutput) {
                abort();
              }
            })});
  std::filesystem::remove_all(log_dir);
}

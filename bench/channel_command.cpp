// One short command through the channel, in a small host and in a large one, against a bare posix_spawn, read
// and wait of the same program.
#include <stdlib.h>

#include <cstring>
#include <filesystem>
#include <memory>

#include "channel_floor.h"
#include "channel_run.h"
#include "report.h"

using namespace darokleim::bench;

namespace {

constexpr int kRepetitions = 2000;

Row MeasureIn(const char* name, size_t host_size) {
  const std::unique_ptr<char[]> host(new char[host_size]);
  memset(host.get(), 1, host_size);
  char answer[64];
  return Compare(
      name, 1.05, kRepetitions, [] { RunThroughChannel(" 16", 16); },
      [&] {
        if (SpawnReadWait(DAROKLEIM_CHANNEL_CHILD, "16", answer, sizeof answer) != 16) abort();
      });
}

}  // namespace

int main(int argc, char** argv) {
  constexpr size_t kMiB = 1024 * 1024;
  char log_dir[] = "/tmp/darokleim-bench-XXXXXX";
  if (mkdtemp(log_dir) == nullptr) return 1;
  InitAdbCommuncation2Server(DAROKLEIM_CHANNEL_CHILD, log_dir, nullptr);
  Print(argc, argv,
        {MeasureIn("channel: one short command, host of 10 MiB", 10 * kMiB),
         MeasureIn("channel: one short command, host of 4 GiB", 4096 * kMiB)});
  std::filesystem::remove_all(log_dir);
}

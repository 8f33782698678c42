// One short command through the channel, in hosts of several sizes: against a bare posix_spawn, read and wait of the
// same program, and against what a host would use instead.
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "bench/channel_alternatives.h"
#include "bench/channel_floor.h"
#include "bench/channel_run.h"
#include "bench/report.h"

using namespace darokleim::bench;

namespace {

constexpr size_t kMiB = 1024 * 1024;
constexpr size_t kAnswer = 16;
constexpr char kAnswerText[] = "16";

struct Host {
  std::string name;
  size_t bytes;
  int forks;  // repetitions of what takes longer the larger the host
};

void AddRows(std::vector<Row>* rows, const StartedChannel& channel, const Host& host) {
  const std::unique_ptr<char[]> memory(new char[host.bytes]);
  memset(memory.get(), 1, host.bytes);
  char answer[64];
  const auto compare = [&](const char* against, double goal, int repetitions, auto other) {
    rows->push_back(Compare(
        {"one short command, host of " + host.name, against, goal, repetitions},
        [&] { channel.Run(kAnswer); },
        [&] {
          if (other() != kAnswer) abort();
        }));
  };
  compare("bare posix_spawn, read, wait", 1.05, 2000,
          [&] { return SpawnReadWait(DAROKLEIM_CHANNEL_CHILD, kAnswerText, answer, sizeof answer); });
  compare("popen", 1, 300, [&] { return PopenRead(DAROKLEIM_CHANNEL_CHILD " 16", answer, sizeof answer); });
  compare("fork and exec", 1, host.forks,
          [&] { return ForkExecRead(DAROKLEIM_CHANNEL_CHILD, kAnswerText, answer, sizeof answer); });
}

}  // namespace

int main() {
  const StartedChannel channel;
  std::vector<Row> rows;
  AddRows(&rows, channel, {"10 MiB", 10 * kMiB, 300});
  AddRows(&rows, channel, {"1 GiB", 1024 * kMiB, 60});
  AddRows(&rows, channel, {"4 GiB", 4096 * kMiB, 20});
  Print(rows);
}

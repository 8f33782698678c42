// Short commands from 1 to 64 threads, and output from 1 MiB to 1 GiB: through the channel and without it.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <string>

#include "bench/channel_floor.h"
#include "bench/channel_run.h"

namespace {

using namespace darokleim::bench;

constexpr std::size_t kAnswer = 16;
constexpr std::int64_t kMiB = 1024 * 1024;
constexpr int kMostThreads = 64;

const StartedChannel& Channel() {
  static const StartedChannel channel;
  return channel;
}

void ShortCommands(benchmark::State& state) {
  for (auto _ : state) Channel().Run(kAnswer);
}

void ShortCommandsSpawned(benchmark::State& state) {
  char answer[64];
  for (auto _ : state) {
    if (SpawnReadWait(DAROKLEIM_CHANNEL_CHILD, "16", answer, sizeof answer) != kAnswer) abort();
  }
}

// The first run gets its memory from the system, which a virtual machine in turn gets from its host; the channel
// keeps it for the next.
void Output(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  Channel().Run(size);
  for (auto _ : state) Channel().Run(size);
}

void OutputRead(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  const std::string word = std::to_string(size);
  const std::unique_ptr<char[]> memory(new char[size + 1]);
  memset(memory.get(), 1, size + 1);
  for (auto _ : state) {
    if (SpawnReadWait(DAROKLEIM_CHANNEL_CHILD, word.c_str(), memory.get(), size + 1, kMiB) != size) abort();
  }
}

void Threads(benchmark::internal::Benchmark* benchmark) {
  benchmark->ThreadRange(1, kMostThreads)->UseRealTime()->MinTime(0.2)->Repetitions(3);
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->RangeMultiplier(4)->Range(kMiB, 1024 * kMiB)->UseRealTime()->MinTime(0.1)->Repetitions(3);
}

BENCHMARK(ShortCommands)->Name("through the channel")->Apply(Threads);
BENCHMARK(ShortCommandsSpawned)->Name("bare posix_spawn, read, wait")->Apply(Threads);
BENCHMARK(Output)->Name("output through the channel")->Apply(Sizes);
BENCHMARK(OutputRead)->Name("read into memory already there")->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();

// Files from 1 MiB to 1 GiB, to a simulated phone and back.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <optional>
#include <string>

#include "bench/benchmark_phone.h"
#include "bench/report.h"

namespace {

using namespace darokleim::bench;

constexpr std::int64_t kMiB = 1024 * 1024;
constexpr char kOnPhone[] = "/sdcard/sent.bin";

std::optional<BenchmarkPhone> phone;

void Fail(benchmark::State& state, int code) {
  state.SkipWithError(("result " + std::to_string(code)).c_str());
}

// Each file arrives anew: what is there already would be skipped.
void Push(benchmark::State& state) {
  const std::string file = phone->FileOf(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    phone->Shell(std::string("rm -f ") + kOnPhone);
    int code = ADB_RESULT_OK;
    state.SetIterationTime(
        SecondsOf([&] { code = AdbPushFile(BenchmarkPhone::kSerial, file.c_str(), kOnPhone, nullptr); }));
    if (code != ADB_RESULT_OK) return Fail(state, code);
  }
}

void Pull(benchmark::State& state) {
  const std::string sent = phone->FileOf(static_cast<std::size_t>(state.range(0)));
  BenchmarkPhone::Output({"adb", "-s", BenchmarkPhone::kSerial, "push", sent, kOnPhone});
  const std::string received = phone->OnHost("received");
  for (auto _ : state) {
    std::filesystem::remove(received);
    int code = ADB_RESULT_OK;
    state.SetIterationTime(
        SecondsOf([&] { code = AdbPullFile(BenchmarkPhone::kSerial, kOnPhone, received.c_str(), nullptr); }));
    if (code != ADB_RESULT_OK) return Fail(state, code);
    if (std::filesystem::file_size(received) != std::filesystem::file_size(sent)) return Fail(state, -1);
  }
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->RangeMultiplier(4)->Range(kMiB, 1024 * kMiB)->UseManualTime()->Iterations(1)->Repetitions(3);
}

BENCHMARK(Push)->Name("AdbPushFile")->Apply(Sizes);
BENCHMARK(Pull)->Name("AdbPullFile")->Apply(Sizes);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  phone.emplace();
  benchmark::RunSpecifiedBenchmarks();
  phone.reset();
}

// Time and memory of the listing functions, from a thousand files to a million.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "bench/answering_channel.h"
#include "bench/listings.h"
#include "bench/peak_memory.h"
#include "darokleim.h"
#include "tests/support/temporary_directory.h"

namespace {

using namespace darokleim::bench;

constexpr char kSerial[] = "S1";
constexpr char kRoot[] = "/sdcard/DCIM";

// One directory with as many folders as hold the files.
std::string FolderLines(int files) {
  std::string lines;
  for (int i = 0; i < files / kFilesPerDirectory; ++i) {
    lines += AdbLsLineText(kFolderMode, i, InOrder(i), "album" + std::to_string(i));
  }
  return lines;
}

std::string FileLines() {
  std::string lines;
  for (int i = 0; i < kFilesPerDirectory; ++i) lines += AdbLsLineText(kFileMode, i, InOrder(i), Name(i));
  return lines;
}

template <typename List>
void Measure(benchmark::State& state, List list) {
  const auto run = [&] {
    char* json = nullptr;
    int length = 0;
    Expect(list(&json, &length) == ADB_RESULT_OK);
    Expect(length > state.range(0));
    AdbFreeResource(&json);
  };
  TidyHeap();
  for (auto _ : state) run();
  state.counters["peak_bytes"] = PeakBytesOf(run);
}

void GetDirFiles(benchmark::State& state) {
  std::string output = LsText(static_cast<int>(state.range(0)));
  device_answer = [&](std::string_view) -> std::string& { return output; };
  Measure(state, [](char** json, int* length) {
    return AdbGetDirFiles(kSerial, kRoot, json, length, 1, 0, nullptr);
  });
}

template <auto function>
void FolderByFolder(benchmark::State& state) {
  std::string folders = FolderLines(static_cast<int>(state.range(0))), files = FileLines();
  const std::string of_root = std::string(" -s ") + kSerial + " ls \"" + kRoot + "\"";
  device_answer = [&](std::string_view arguments) -> std::string& {
    return arguments == of_root ? folders : files;
  };
  Measure(state,
          [](char** json, int* length) { return function(kSerial, kRoot, json, length, 1, 0, nullptr); });
}

void GetFilesBySuffix(benchmark::State& state) {
  std::string find = "/system/bin/find\r\n", paths = FindText(static_cast<int>(state.range(0)));
  device_answer = [&](std::string_view arguments) -> std::string& {
    return arguments.find("shell ls") != std::string_view::npos ? find : paths;
  };
  Measure(state, [](char** json, int* length) {
    return AdbGetFilesBySuffix(kSerial, kRoot, "jpg", json, length, nullptr);
  });
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->RangeMultiplier(10)->Range(1000, kMillion)->MinTime(0.1)->Repetitions(3);
}

BENCHMARK(GetDirFiles)->Name("AdbGetDirFiles")->Apply(Sizes);
BENCHMARK(FolderByFolder<AdbGetDirFilesEx>)->Name("AdbGetDirFilesEx")->Apply(Sizes);
BENCHMARK(FolderByFolder<AdbGetDirFilesAndDirs>)->Name("AdbGetDirFilesAndDirs")->Apply(Sizes);
BENCHMARK(GetFilesBySuffix)->Name("AdbGetFilesBySuffix")->Apply(Sizes);

}  // namespace

int main(int argc, char** argv) {
  const darokleim::test::TemporaryDirectory for_the_side_file;
  std::filesystem::current_path(for_the_side_file.path());
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}

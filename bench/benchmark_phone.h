// A simulated phone, and the library started for it in this process.
#ifndef DAROKLEIM_BENCH_BENCHMARK_PHONE_H
#define DAROKLEIM_BENCH_BENCHMARK_PHONE_H

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

#include "darokleim.h"
#include "tests/support/process.h"
#include "tests/support/simulated_phones.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::bench {

class BenchmarkPhone {
 public:
  static constexpr char kSerial[] = "R58BENCH01";

  BenchmarkPhone() : phones_({std::string(kSerial) + ",android=modern"}) {
    setenv("ANDROID_ADB_SERVER_PORT", phones_.port().c_str(), 1);
    setenv("DAROKLEIM_CHANNEL_ASSIST", "1", 1);
    std::filesystem::create_symlink(test::PathOfProgram("adb"), OnHost("adb"));
    std::ofstream(OnHost("busybox")) << "must be there; not used";
    if (AdbSdkInit(Folder().c_str(), "benchmark", Folder().c_str()) != ADB_RESULT_OK) {
      throw std::runtime_error("the library does not start");
    }
  }

  // On the host, gone at the end; the logs are there.
  std::string Folder() const { return folder_.path().native(); }
  std::string OnHost(const std::string& name) const { return folder_.File(name); }

  // What the phone's shell printed. Throws when the command fails.
  std::string Shell(const std::string& command) const {
    return Output({"adb", "-s", kSerial, "shell", command});
  }

  // The same for a program of the host.
  static std::string Output(const test::Words& command) {
    const test::Outcome outcome = test::RunProgram(command, {});
    if (outcome.status == 0) return outcome.output;
    throw std::runtime_error(command[0] + " fails: " + outcome.errors + outcome.output);
  }

  // A file on the host with random content, which no layer on its way can shorten. One at a time.
  std::string FileOf(std::size_t bytes) const {
    std::string path = OnHost("sent");
    std::error_code none_yet;
    if (std::filesystem::file_size(path, none_yet) != bytes) {
      Output({"sh", "-c", "head -c " + std::to_string(bytes) + " /dev/urandom >" + path});
    }
    return path;
  }

 private:
  const test::TemporaryDirectory folder_;
  const test::SimulatedPhones phones_;
};

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_BENCHMARK_PHONE_H

// On a simulated phone: the library, and the command-line tool, against adb as a shell script or a user runs it.
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench/benchmark_phone.h"
#include "bench/report.h"

namespace {

using namespace darokleim::bench;
using darokleim::test::Words;

constexpr char kDirectory[] = "/sdcard/DCIM/many";
constexpr char kSent[] = "/sdcard/sent.bin";
// For the questions that the tool asks the device besides.
constexpr double kToolGoal = 1.25;
constexpr double kListingGoal = 2;
constexpr double kSmallGoal = 1.2;
constexpr char kSmall[] = "/sdcard/small";
constexpr std::size_t kFileSize = 256 * 1024 * 1024;

Words Joined(Words first, const Words& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

Words Adb(const Words& words) {
  return Joined({"adb", "-s", BenchmarkPhone::kSerial}, words);
}

Words Tool(const BenchmarkPhone& phone, const Words& words) {
  return Joined({DAROKLEIM_TOOL, "-q", "-s", BenchmarkPhone::kSerial, "--log-dir", phone.Folder()}, words);
}

double SecondsOfRun(const Words& command) {
  return SecondsOf([&] { BenchmarkPhone::Output(command); });
}

Row CompareScript(const BenchmarkPhone& phone) {
  const std::string script = phone.OnHost("script");
  std::ofstream(script) << "#!/bin/sh\nmodel=$(adb -s " << BenchmarkPhone::kSerial
                        << " shell getprop ro.product.model)\necho \"$model\"\n";
  chmod(script.c_str(), 0755);
  char model[64];
  return Compare(
      {"AdbGetPhoneProductModel", "a shell script that runs adb", 1, 100},
      [&] {
        if (AdbGetPhoneProductModel(BenchmarkPhone::kSerial, model, sizeof model, nullptr) != ADB_RESULT_OK)
          abort();
      },
      [&] { BenchmarkPhone::Output({script}); });
}

Row CompareListing(const BenchmarkPhone& phone) {
  phone.Shell(std::string("mkdir -p ") + kDirectory + "; cd " + kDirectory +
              "; i=0; while [ $i -lt 10000 ]; do : >IMG_$i.jpg; i=$((i+1)); done");
  return Compare(
      {"darokleim ls, 10,000 files", "adb shell ls -l", kToolGoal, 9},
      [&] {
        BenchmarkPhone::Output(Tool(phone, {"ls", kDirectory}));
      },
      [&] {
        BenchmarkPhone::Output(Adb({"shell", "ls", "-l", kDirectory}));
      });
}

// The phone lists one folder, and so does the tool.
Row CompareListingAboveMany(const BenchmarkPhone& phone) {
  constexpr char kAbove[] = "/sdcard/above";
  phone.Shell(
      std::string("mkdir -p ") + kAbove + "; cd " + kAbove +
      "; f=0; while [ $f -lt 50 ]; do mkdir $f; i=0; while [ $i -lt 1000 ]; do : >$f/$i; i=$((i+1)); done; "
      "f=$((f+1)); done");
  return Compare(
      {"darokleim ls, 50 folders with 50,000 files", "adb shell ls", kListingGoal, 25},
      [&] {
        BenchmarkPhone::Output(Tool(phone, {"ls", kAbove}));
      },
      [&] {
        BenchmarkPhone::Output(Adb({"shell", "ls", kAbove}));
      });
}

// 500 files of 4 KiB, each named on the command line.
Words SmallFiles(const BenchmarkPhone& phone) {
  constexpr int kFiles = 500;
  constexpr std::size_t kSize = 4096;
  std::filesystem::create_directory(phone.OnHost("small"));
  Words files;
  for (int i = 0; i < kFiles; ++i) {
    files.push_back(phone.OnHost("small/" + std::to_string(i)));
    std::ofstream(files.back()) << std::string(kSize, 'x');
  }
  return files;
}

Words To(const char* folder, Words words, const Words& files) {
  words = Joined(std::move(words), files);
  words.emplace_back(folder);
  return words;
}

Row ComparePushOfSmallFiles(const BenchmarkPhone& phone, const Words& files) {
  const auto push = [&](const Words& command) {
    phone.Shell(std::string("rm -rf ") + kSmall + "; mkdir " + kSmall);
    return SecondsOfRun(command);
  };
  return CompareSeconds(
      {"darokleim push, 500 files by name", "adb push", kSmallGoal, 9},
      [&] { return push(Tool(phone, To(kSmall, {"push"}, files))); },
      [&] { return push(Adb(To(kSmall, {"push"}, files))); });
}

Row ComparePushAgain(const BenchmarkPhone& phone, const Words& files) {
  phone.Shell(std::string("rm -rf ") + kSmall + "; mkdir " + kSmall);
  BenchmarkPhone::Output(Tool(phone, To(kSmall, {"push"}, files)));
  return Compare(
      {"darokleim push --update, the same files unchanged", "adb push --sync", kSmallGoal, 2},
      [&] {
        BenchmarkPhone::Output(Tool(phone, To(kSmall, {"push", "--update"}, files)));
      },
      [&] {
        BenchmarkPhone::Output(Adb(To(kSmall, {"push", "--sync"}, files)));
      });
}

// Each file arrives anew: what is there already would be skipped.
Row ComparePush(const BenchmarkPhone& phone) {
  const std::string file = phone.FileOf(kFileSize);
  const auto push = [&](const Words& command) {
    phone.Shell(std::string("rm -f ") + kSent);
    return SecondsOfRun(command);
  };
  return CompareSeconds(
      {"darokleim push, 256 MiB", "adb push", kToolGoal, 7},
      [&] {
        return push(Tool(phone, {"push", file, kSent}));
      },
      [&] {
        return push(Adb({"push", file, kSent}));
      });
}

Row ComparePull(const BenchmarkPhone& phone) {
  const std::string file = phone.OnHost("received");
  const auto pull = [&](const Words& command) {
    std::filesystem::remove(file);
    return SecondsOfRun(command);
  };
  return CompareSeconds(
      {"darokleim pull, 256 MiB", "adb pull", kToolGoal, 7},
      [&] {
        return pull(Tool(phone, {"pull", kSent, file}));
      },
      [&] {
        return pull(Adb({"pull", kSent, file}));
      });
}

}  // namespace

int main() {
  const BenchmarkPhone phone;
  std::vector<Row> rows;
  rows.push_back(CompareScript(phone));
  rows.push_back(CompareListing(phone));
  rows.push_back(CompareListingAboveMany(phone));
  const Words small_files = SmallFiles(phone);
  rows.push_back(ComparePushOfSmallFiles(phone, small_files));
  rows.push_back(ComparePushAgain(phone, small_files));
  rows.push_back(ComparePush(phone));
  rows.push_back(ComparePull(phone));
  Print(rows);
}

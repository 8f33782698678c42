// The channel without adb, on a simulated phone: against adb itself, and against the same call through adb.
#include <stdlib.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "bench/benchmark_phone.h"
#include "bench/report.h"
#include "src/platform/command_channel.h"

namespace {

using namespace darokleim::bench;

constexpr char kTree[] = "/data/local/tmp/tree";
constexpr int kFolders = 1000;  // with the tree itself and ten between

void Use(const BenchmarkPhone& phone, const char* mode) {
  setenv("DAROKLEIM_CHANNEL", mode, 1);
  if (InitAdbCommuncation2Server(phone.OnHost("adb").c_str(), phone.Folder().c_str(), "benchmark") != 0)
    abort();
}

void Require(int code) {
  if (code != ADB_RESULT_OK) abort();
}

Row CompareDeviceList(const BenchmarkPhone& phone) {
  Use(phone, "direct");
  return Compare(
      {"AdbGetDevicesEx, direct", "adb devices", 0.1, 300},
      [] {
        char* text = nullptr;
        int length = 0;
        Require(AdbGetDevicesEx(&text, &length, nullptr));
        AdbFreeResource(&text);
      },
      [] {
        BenchmarkPhone::Output({"adb", "devices"});
      });
}

Row CompareProperty(const BenchmarkPhone& phone) {
  Use(phone, "direct");
  return Compare(
      {"AdbGetPhoneProductModel, direct", "adb shell getprop", 0.6, 100},
      [] {
        char model[64];
        Require(AdbGetPhoneProductModel(BenchmarkPhone::kSerial, model, sizeof model, nullptr));
      },
      [] {
        BenchmarkPhone::Output(
            {"adb", "-s", BenchmarkPhone::kSerial, "shell", "getprop", "ro.product.model"});
      });
}

void ListTree() {
  char* json = nullptr;
  int length = 0;
  Require(AdbGetDirFilesEx(BenchmarkPhone::kSerial, kTree, &json, &length, 1, 1, nullptr));
  AdbFreeResource(&json);
}

// The server's replies take as long as a real one's, so that the plain way needs most of a minute.
Row CompareTree(const BenchmarkPhone& phone) {
  phone.Shell(std::string("for i in $(seq 0 ") + std::to_string(kFolders - 1) + "); do mkdir -p " + kTree +
              "/$((i%10))/$i; done");
  const auto in_mode = [&phone](const char* mode) {
    return [&phone, mode] {
      Use(phone, mode);
      return SecondsOf(ListTree);
    };
  };
  return CompareSeconds({"AdbGetDirFilesEx, 1,000 folders, direct", "the same, plain", 0.03, 1},
                        in_mode("direct"), in_mode("plain"));
}

}  // namespace

int main() {
  const BenchmarkPhone phone;
  std::vector<Row> rows;
  rows.push_back(CompareDeviceList(phone));
  rows.push_back(CompareProperty(phone));
  rows.push_back(CompareTree(phone));
  Print(rows);
}

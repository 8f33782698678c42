// File lists as JSON, and the listing of a directory, against JsonCpp building and writing the same document (values
// moved, keys static), for the listing after splitting the device's text into as many records. Ours includes the
// side file, which the floor does not write. Memory is what each needs beyond its input, at its highest.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <list>
#include <string>
#include <vector>

#include "darokleim.h"
#include "filesystem/file_info.h"
#include "filesystem/file_list_json.h"
#include "listings.h"
#include "platform/command_channel.h"
#include "platform/log_library.h"
#include "report.h"
#include "support/plain_file_list_json.h"
#include "support/temporary_directory.h"

namespace {

using namespace darokleim::bench;

constexpr double kTimeGoal = 0.5;
constexpr double kMemoryGoal = 0.7;
constexpr int kRepetitions = 3;
constexpr char kRoot[] = "/sdcard/DCIM";

// What the device prints for each command.
std::string device_output;

std::list<FileInfo> Files(const std::string& camera) {
  std::list<FileInfo> files;
  for (int i = 0; i < kLines; ++i) {
    files.push_back({static_cast<std::uint64_t>(i) * 37, 0x81B0, Directory(i) + "/" + camera + Name(i),
                     "2020-01-02 03:04:05", 1577934245U + static_cast<unsigned>(i)});
  }
  return files;
}

// A document that nobody made would cost nothing.
void Expect(const std::string& document) {
  if (document.size() < kLines) std::abort();
}

// Bytes of memory that a process comes to use while it runs the function, a process of its own.
template <typename Function>
double PeakBytesOf(Function function) {
  TidyHeap();
  int ends[2];
  if (pipe(ends) != 0) std::abort();
  const pid_t child = fork();
  if (child == 0) {
    const auto peak = [] {
      rusage usage{};
      getrusage(RUSAGE_SELF, &usage);
#if defined(__APPLE__)
      return static_cast<double>(usage.ru_maxrss);
#else
      constexpr double kUnit = 1024;
      return kUnit * static_cast<double>(usage.ru_maxrss);
#endif
    };
    const double before = peak();
    function();
    const double bytes = peak() - before;
    _exit(write(ends[1], &bytes, sizeof bytes) == sizeof bytes ? 0 : 1);
  }
  double bytes = 0;
  if (child < 0 || read(ends[0], &bytes, sizeof bytes) != sizeof bytes) std::abort();
  waitpid(child, nullptr, 0);
  close(ends[0]);
  close(ends[1]);
  return bytes;
}

template <typename Ours, typename Floor>
void AddRows(std::vector<Row>* rows, const std::string& name, Ours ours, Floor floor) {
  rows->push_back(Compare(name, kTimeGoal, kRepetitions, ours, floor));
  const double our_bytes = PeakBytesOf(ours);
  const double floor_bytes = PeakBytesOf(floor);
  rows->push_back({name + ", memory", our_bytes, floor_bytes, kMemoryGoal, our_bytes / floor_bytes});
}

void AddFlatRows(std::vector<Row>* rows, const std::string& name, const std::string& camera) {
  const std::list<FileInfo> files = Files(camera);
  AddRows(
      rows, name, [&] { Expect(serialization_file_list(&files, true)); },
      [&] { Expect(darokleim::PlainFlatList(files, true)); });
}

void AddTreeRows(std::vector<Row>* rows) {
  const std::list<FileInfo> files = Files("");
  AddRows(
      rows, "tree, a million files in 10,000 folders",
      [&] { Expect(serialization_file_list_keep_folder_structer(&files, kRoot, true)); },
      [&] { Expect(darokleim::PlainTree(files, kRoot, true)); });
}

void AddListingRows(std::vector<Row>* rows) {
  device_output = LsText("1 root sdcard_rw");
  const auto list = [] {
    char* json = nullptr;
    int length = 0;
    if (AdbGetDirFiles("S1", kRoot, &json, &length, 1, 0, nullptr) != ADB_RESULT_OK) std::abort();
    AdbFreeResource(&json);
  };
  AddRows(rows, "AdbGetDirFiles, a million files", list, [] {
    std::list<FileInfo> files;
    LsFloor(device_output, &files);
    Expect(darokleim::PlainFlatList(files, true));
  });
}

}  // namespace

int InitAdbCommuncation2Server(const char*, const char*, const void*) {
  return 0;
}
int ExecuteAdbCommandSynchronization(const char*, const bool*, char** out, int* out_len) {
  *out = device_output.data();
  *out_len = static_cast<int>(device_output.size());
  return 0;
}
int ExecuteAdbCommandAnsynchronization(const char*, const bool*, void*, void*) {
  return 0;
}
void ReleaseAdbOutBuffer(char*) {}
bool InitLogEx(const void*, const char*, const char*) {
  return true;
}
void LogEx(const char*, int, const char*, ...) {}

int main(int argc, char** argv) {
  const darokleim::TemporaryDirectory for_the_side_file;
  std::filesystem::current_path(for_the_side_file.path());
  std::vector<Row> rows;
  AddFlatRows(&rows, "flat, a million files", "");
  AddFlatRows(&rows, "flat, a million files with a Chinese name", "\xE7\x9B\xB8\xE6\x9C\xBA");
  AddTreeRows(&rows);
  AddListingRows(&rows);
  Print(argc, argv, rows);
}

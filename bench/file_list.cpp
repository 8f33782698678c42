// File lists as JSON, and the listing of a directory, against JsonCpp building and writing the same document (values
// moved, keys static), for the listing after splitting the device's text into as many records. Ours includes the
// side file, which the floor does not write. Memory is what each needs beyond its input, at its highest.
#include <filesystem>
#include <list>
#include <string>
#include <vector>

#include "bench/answering_channel.h"
#include "bench/listings.h"
#include "bench/peak_memory.h"
#include "bench/report.h"
#include "darokleim.h"
#include "src/filesystem/file_info.h"
#include "src/filesystem/file_list_json.h"
#include "tests/support/plain_file_list_json.h"
#include "tests/support/temporary_directory.h"

namespace {

using namespace darokleim::bench;

constexpr double kTimeGoal = 0.5;
constexpr double kMemoryGoal = 0.7;
constexpr int kRepetitions = 3;
constexpr char kRoot[] = "/sdcard/DCIM";

std::list<FileInfo> Files(const std::string& camera) {
  std::list<FileInfo> files;
  for (int i = 0; i < kMillion; ++i) {
    files.push_back({static_cast<std::uint64_t>(i) * 37, 0x81B0, Directory(i) + "/" + camera + Name(i),
                     "2020-01-02 03:04:05", 1577934245U + static_cast<unsigned>(i)});
  }
  return files;
}

void ExpectDocument(const std::string& document) {
  Expect(document.size() > kMillion);
}

template <typename Ours, typename Floor>
void AddRows(std::vector<Row>* rows, const std::string& name, const std::string& against, Ours ours,
             Floor floor) {
  rows->push_back(Compare({name, against, kTimeGoal, kRepetitions}, ours, floor));
  rows->push_back(CompareMemory({name + ", memory", against, kMemoryGoal, 1}, ours, floor));
}

void AddFlatRows(std::vector<Row>* rows, const std::string& name, const std::string& camera) {
  const std::list<FileInfo> files = Files(camera);
  AddRows(
      rows, name, "JsonCpp", [&] { ExpectDocument(serialization_file_list(&files, true)); },
      [&] { ExpectDocument(darokleim::test::PlainFlatList(files, true)); });
}

void AddTreeRows(std::vector<Row>* rows) {
  const std::list<FileInfo> files = Files("");
  AddRows(
      rows, "tree JSON, a million files in 10,000 folders", "JsonCpp",
      [&] { ExpectDocument(serialization_file_list_keep_folder_structer(&files, kRoot, true)); },
      [&] { ExpectDocument(darokleim::test::PlainTree(files, kRoot, true)); });
}

void AddListingRows(std::vector<Row>* rows) {
  std::string output = LsText(kMillion);
  device_answer = [&](std::string_view) -> std::string& { return output; };
  const auto list = [] {
    char* json = nullptr;
    int length = 0;
    Expect(AdbGetDirFiles("S1", kRoot, &json, &length, 1, 0, nullptr) == ADB_RESULT_OK);
    AdbFreeResource(&json);
  };
  AddRows(rows, "AdbGetDirFiles, a million files", "parser's floor and JsonCpp", list, [&] {
    std::list<FileInfo> files;
    LsFloor(output, &files);
    ExpectDocument(darokleim::test::PlainFlatList(files, true));
  });
}

}  // namespace

int main() {
  const darokleim::test::TemporaryDirectory for_the_side_file;
  std::filesystem::current_path(for_the_side_file.path());
  std::vector<Row> rows;
  AddFlatRows(&rows, "flat JSON, a million files", "");
  AddFlatRows(&rows, "flat JSON, a million files with a Chinese name", "\xE7\x9B\xB8\xE6\x9C\xBA");
  AddTreeRows(&rows);
  AddListingRows(&rows);
  Print(rows);
}

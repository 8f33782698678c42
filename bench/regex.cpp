// The listing parsers and a listing as JSON, against the same by regular expressions and JsonCpp, with the
// expressions built once and built for each line.
#include <algorithm>
#include <filesystem>
#include <list>
#include <string>
#include <vector>

#include "bench/answering_channel.h"
#include "bench/listings.h"
#include "bench/regex_listings.h"
#include "bench/report.h"
#include "darokleim.h"
#include "src/filesystem/adb_ls_listing.h"
#include "src/filesystem/find_listing.h"
#include "src/filesystem/ls_listing.h"
#include "tests/support/plain_file_list_json.h"
#include "tests/support/temporary_directory.h"

namespace {

using namespace darokleim::bench;

constexpr char kRoot[] = "/sdcard/DCIM";

int Length(const std::string& text) {
  return static_cast<int>(text.size());
}

template <typename Records>
void ExpectSame(const Records& ours, const std::list<FileInfo>& others) {
  Expect(std::equal(ours.begin(), ours.end(), others.begin(), others.end(),
                    [](const FileInfo& a, const FileInfo& b) {
                      return a.size == b.size && a.mode == b.mode && a.file == b.file && a.time == b.time &&
                             a.utc_timestamp == b.utc_timestamp;
                    }));
}

// Both make their records anew in each run.
template <typename Ours, typename Other>
Row CompareRecords(const Comparison& comparison, Ours ours, Other other) {
  ExpectSame(ours(), other());
  return Compare(
      comparison, [&] { Expect(!ours().empty()); }, [&] { Expect(!other().empty()); });
}

std::list<FileInfo> Decoded(bool (*decode)(const char*, int, std::list<FileInfo>*), const std::string& text) {
  std::list<FileInfo> files;
  Expect(decode(text.data(), Length(text), &files));
  return files;
}

Row CompareDocuments(const Comparison& comparison, std::string ls, Built built) {
  device_answer = [&](std::string_view) -> std::string& { return ls; };
  const auto ours = [] {
    char* json = nullptr;
    int length = 0;
    Expect(AdbGetDirFiles("S1", kRoot, &json, &length, 1, 0, nullptr) == ADB_RESULT_OK);
    std::string document(json, static_cast<std::size_t>(length));
    AdbFreeResource(&json);
    return document;
  };
  const auto other = [&] { return darokleim::test::PlainFlatList(RegexLs(ls, built), true); };
  Expect(ours() == other());
  return Compare(
      comparison, [&] { Expect(!ours().empty()); }, [&] { Expect(!other().empty()); });
}

void AddRows(std::vector<Row>* rows, int files, const std::string& of_files, Built built, int repetitions) {
  const std::string against =
      built == Built::kOnce ? "std::regex built once" : "std::regex built for each line";
  const std::string ls = LsText(files), adb_ls = AdbLsText(files), find = FindText(files);
  rows->push_back(CompareRecords(
      {"DecodeLSOut, " + of_files, against, 1, repetitions}, [&] { return Decoded(DecodeLSOut, ls); },
      [&] { return RegexLs(ls, built); }));
  rows->push_back(CompareRecords(
      {"DecodeADBLSOut, " + of_files, against, 1, repetitions},
      [&] { return DecodeADBLSOut(kRoot, adb_ls.data(), Length(adb_ls)); },
      [&] { return RegexAdbLs(kRoot, adb_ls, built); }));
  rows->push_back(CompareRecords(
      {"DecodeFindOut, " + of_files, against, 1, repetitions}, [&] { return Decoded(DecodeFindOut, find); },
      [&] { return RegexFind(find, built); }));
  rows->push_back(
      CompareDocuments({"AdbGetDirFiles, " + of_files, against + ", JsonCpp", 1, repetitions}, ls, built));
}

}  // namespace

int main() {
  const darokleim::test::TemporaryDirectory for_the_side_file;
  std::filesystem::current_path(for_the_side_file.path());
  std::vector<Row> rows;
  AddRows(&rows, 100'000, "100,000 files", Built::kOnce, 5);
  AddRows(&rows, 1'000, "1,000 files", Built::kForEachLine, 3);
  Print(rows);
}

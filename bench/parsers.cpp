// The listing parsers, against programs that only split the lines and make the same allocations: one list node
// (or place in a vector) and the same strings for each record, copied from any part of the line.
#include <cstdio>
#include <list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/listings.h"
#include "bench/peak_memory.h"
#include "bench/report.h"
#include "src/filesystem/adb_ls_listing.h"
#include "src/filesystem/find_listing.h"
#include "src/filesystem/ls_listing.h"

namespace {

using namespace darokleim::bench;

constexpr std::size_t kAdbLsTime = 19;
constexpr std::size_t kAdbLsName = 27;

int Length(const std::string& text) {
  return static_cast<int>(text.size());
}

Comparison AgainstAllocations(const std::string& name) {
  return {name, "splitting the lines and the same allocations", 1.25, 15};
}

// Counts the lines first, to allocate the vector once.
std::vector<FileInfo> AdbLsFloor(const std::string& dir, std::string_view text) {
  std::size_t lines = 0;
  SplitLines(text, [&](std::string_view) { ++lines; });
  std::vector<FileInfo> files;
  files.reserve(lines);
  SplitLines(text, [&](std::string_view line) {
    FileInfo& info = files.emplace_back();
    info.time = std::string(line.substr(0, kAdbLsTime));
    info.file = std::string(line.substr(kAdbLsName - dir.size() - 1));
  });
  return files;
}

void FindFloor(std::string_view text, std::list<FileInfo>* files) {
  SplitLines(text, [&](std::string_view line) { files->push_back({0, 0, std::string(line), "", 0}); });
}

// Freeing the records is not part of the comparison.
template <typename Fill>
double SecondsToFill(Fill fill) {
  TidyHeap();
  std::list<FileInfo> files;
  const double seconds = SecondsOf([&] { fill(&files); });
  Expect(files.size() == kMillion);
  return seconds;
}

template <typename Make>
double SecondsToMake(Make make) {
  TidyHeap();
  std::vector<FileInfo> files;
  const double seconds = SecondsOf([&] { files = make(); });
  Expect(files.size() == kMillion);
  return seconds;
}

Row CompareLists(const std::string& name, const std::string& text,
                 bool (*decode)(const char*, int, std::list<FileInfo>*),
                 void (*floor)(std::string_view, std::list<FileInfo>*)) {
  return CompareSeconds(
      AgainstAllocations(name),
      [&] { return SecondsToFill([&](auto* files) { decode(text.data(), Length(text), files); }); },
      [&] { return SecondsToFill([&](auto* files) { floor(text, files); }); });
}

Row CompareAdbLs(const std::string& name, unsigned (*time)(int)) {
  const std::string text = AdbLsText(kMillion, time);
  const std::string dir = "/sdcard/DCIM";
  return CompareSeconds(
      AgainstAllocations(name),
      [&] { return SecondsToMake([&] { return DecodeADBLSOut(dir, text.data(), Length(text)); }); },
      [&] { return SecondsToMake([&] { return AdbLsFloor(dir, text); }); });
}

}  // namespace

int main() {
  Print({CompareLists("DecodeLSOut, a million files", LsText(kMillion), DecodeLSOut, LsFloor),
         CompareLists("DecodeLSOut, a million files of an old phone", LsText(kMillion, kOldColumns),
                      DecodeLSOut, LsFloor),
         CompareAdbLs("DecodeADBLSOut, a million entries", InOrder),
         CompareAdbLs("DecodeADBLSOut, a million entries, times in no order", InNoOrder),
         CompareLists("DecodeFindOut, a million paths", FindText(kMillion), DecodeFindOut, FindFloor)});
}

// The listing parsers, against programs that only split the lines and make the same allocations: one list node
// (or place in a vector) and the same strings for each record, copied from any part of the line.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "filesystem/adb_ls_listing.h"
#include "filesystem/find_listing.h"
#include "filesystem/ls_listing.h"
#include "listings.h"
#include "report.h"

namespace {

using namespace darokleim::bench;

constexpr double kGoal = 1.25;
constexpr int kRepetitions = 15;
constexpr std::size_t kAdbLsTime = 19;
constexpr std::size_t kAdbLsName = 27;

constexpr int kSecondsBetweenFiles = 315;

int Length(const std::string& text) {
  return static_cast<int>(text.size());
}

// Times over the ten years before 2026, by the number of a file.
std::string AdbLsText(unsigned (*time)(int)) {
  std::string text;
  for (int i = 0; i < kLines; ++i) {
    char line[128];
    snprintf(line, sizeof(line), "%08x %08x %08x %s\n", i % 50 == 0 ? 0x41F9U : 0x81B0U,
             static_cast<unsigned>(i) * 37, 1451606400U + time(i), Name(i).c_str());
    text += line;
  }
  return text;
}

unsigned InOrder(int number) {
  return static_cast<unsigned>(number) * kSecondsBetweenFiles;
}

// Neighbours are years apart, as a directory without an order of its own gives them.
unsigned InNoOrder(int number) {
  constexpr std::int64_t kPrime = 618'033'989;
  return InOrder(static_cast<int>(number * kPrime % kLines));
}

std::string FindText() {
  std::string text;
  for (int i = 0; i < kLines; ++i) text += Directory(i) + "/" + Name(i) + "\r\n";
  return text;
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

void Expect(bool right) {
  if (!right) std::abort();
}

// Giving the records back is no part of the comparison.
template <typename Fill>
double SecondsToFill(Fill fill) {
  TidyHeap();
  std::list<FileInfo> files;
  const double seconds = SecondsOf([&] { fill(&files); });
  Expect(files.size() == kLines);
  return seconds;
}

template <typename Make>
double SecondsToMake(Make make) {
  TidyHeap();
  std::vector<FileInfo> files;
  const double seconds = SecondsOf([&] { files = make(); });
  Expect(files.size() == kLines);
  return seconds;
}

Row CompareLists(const std::string& name, const std::string& text,
                 bool (*decode)(const char*, int, std::list<FileInfo>*),
                 void (*floor)(std::string_view, std::list<FileInfo>*)) {
  return CompareSeconds(
      name, kGoal, kRepetitions,
      [&] { return SecondsToFill([&](auto* files) { decode(text.data(), Length(text), files); }); },
      [&] { return SecondsToFill([&](auto* files) { floor(text, files); }); });
}

Row CompareAdbLs(const std::string& name, unsigned (*time)(int)) {
  const std::string text = AdbLsText(time);
  const std::string dir = "/sdcard/DCIM";
  return CompareSeconds(
      name, kGoal, kRepetitions,
      [&] { return SecondsToMake([&] { return DecodeADBLSOut(dir, text.data(), Length(text)); }); },
      [&] { return SecondsToMake([&] { return AdbLsFloor(dir, text); }); });
}

}  // namespace

int main(int argc, char** argv) {
  Print(argc, argv,
        {CompareLists("DecodeLSOut, a million files", LsText("1 root sdcard_rw"), DecodeLSOut, LsFloor),
         CompareLists("DecodeLSOut, a million files without link count", LsText("root     sdcard_rw"),
                      DecodeLSOut, LsFloor),
         CompareAdbLs("DecodeADBLSOut, a million entries", InOrder),
         CompareAdbLs("DecodeADBLSOut, a million entries, times in no order", InNoOrder),
         CompareLists("DecodeFindOut, a million paths", FindText(), DecodeFindOut, FindFloor)});
}

// What devices print for many files, and what reading it costs at least.
#ifndef DAROKLEIM_BENCH_LISTINGS_H
#define DAROKLEIM_BENCH_LISTINGS_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <list>
#include <string>
#include <string_view>

#include "src/filesystem/file_info.h"

namespace darokleim::bench {

inline constexpr int kMillion = 1'000'000;
inline constexpr int kFilesPerDirectory = 100;

// What was not done would cost nothing.
inline void Expect(bool right) {
  if (!right) std::abort();
}

// Every name is longer than what a string holds without memory of its own.
inline std::string Name(int number) {
  return "IMG_20200102_" + std::to_string(number) + ".jpg";
}

inline std::string Directory(int number) {
  return "/sdcard/DCIM/album" + std::to_string(number / kFilesPerDirectory);
}

// The columns between the permissions and the size: of phones since Android 7, and of older ones.
inline constexpr char kColumns[] = "1 root sdcard_rw";
inline constexpr char kOldColumns[] = "root     sdcard_rw";

inline std::string LsText(int files, const char* columns = kColumns) {
  std::string text;
  for (int i = 0; i < files; ++i) {
    if (i % kFilesPerDirectory == 0) text += "\r\n" + Directory(i) + ":\r\ntotal 4096\r\n";
    char line[128];
    snprintf(line, sizeof(line), "-rw-rw---- %s %8d 2020-%02d-%02d %02d:%02d %s\r\n", columns, i * 37,
             i % 12 + 1, i % 28 + 1, i % 24, i % 60, Name(i).c_str());
    text += line;
  }
  return text;
}

// Times of files by their numbers, over the ten years before 2026.
inline unsigned InOrder(int number) {
  constexpr unsigned kSecondsBetweenFiles = 315;
  return 1451606400U + static_cast<unsigned>(number) * kSecondsBetweenFiles;
}

// Neighbours are years apart, as a directory without an order of its own gives them.
inline unsigned InNoOrder(int number) {
  constexpr std::int64_t kPrime = 618'033'989;
  return InOrder(static_cast<int>(number * kPrime % kMillion));
}

inline std::string AdbLsLineText(unsigned mode, int number, unsigned time, const std::string& name) {
  char columns[32];
  snprintf(columns, sizeof(columns), "%08x %08x %08x ", mode, static_cast<unsigned>(number) * 37, time);
  return columns + name + "\n";
}

inline constexpr unsigned kFolderMode = 0x41F9;
inline constexpr unsigned kFileMode = 0x81B0;

inline std::string AdbLsText(int files, unsigned (*time)(int) = InOrder) {
  std::string text;
  for (int i = 0; i < files; ++i) {
    text += AdbLsLineText(i % 50 == 0 ? kFolderMode : kFileMode, i, time(i), Name(i));
  }
  return text;
}

inline std::string FindText(int files) {
  std::string text;
  for (int i = 0; i < files; ++i) text += Directory(i) + "/" + Name(i) + "\r\n";
  return text;
}

// Calls visit with each line, its line feed taken off.
template <typename Visit>
void SplitLines(std::string_view text, Visit visit) {
  for (std::size_t end; (end = text.find('\n')) != std::string_view::npos; text.remove_prefix(end + 1)) {
    visit(text.substr(0, end));
  }
}

// The same allocations as a record of ls -l: a list node and two strings.
inline void LsFloor(std::string_view text, std::list<FileInfo>* files) {
  constexpr std::size_t kTime = 16;
  constexpr std::size_t kPath = 46;  // as long as most paths
  SplitLines(text, [&](std::string_view line) {
    if (line.front() != '-') return;
    files->push_back(
        {0, 0, std::string(line.substr(line.size() - kPath)), std::string(line.substr(0, kTime)), 0});
  });
}

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_LISTINGS_H

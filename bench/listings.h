// Listings of a million files, and what reading one costs at least.
#ifndef DAROKLEIM_BENCH_LISTINGS_H
#define DAROKLEIM_BENCH_LISTINGS_H

#if defined(__linux__)
#include <malloc.h>
#endif

#include <cstddef>
#include <cstdio>
#include <list>
#include <string>
#include <string_view>

#include "filesystem/file_info.h"

namespace darokleim::bench {

inline constexpr int kLines = 1'000'000;
inline constexpr int kFilesPerDirectory = 100;

// Every name is longer than what a string holds without memory of its own.
inline std::string Name(int number) {
  return "IMG_20200102_" + std::to_string(number) + ".jpg";
}

inline std::string Directory(int number) {
  return "/sdcard/DCIM/album" + std::to_string(number / kFilesPerDirectory);
}

// columns: what stands between the permissions and the size.
inline std::string LsText(const char* columns) {
  std::string text;
  for (int i = 0; i < kLines; ++i) {
    if (i % kFilesPerDirectory == 0) text += "\r\n" + Directory(i) + ":\r\ntotal 4096\r\n";
    char line[128];
    snprintf(line, sizeof(line), "-rw-rw---- %s %8d 2020-%02d-%02d %02d:%02d %s\r\n", columns, i * 37,
             i % 12 + 1, i % 28 + 1, i % 24, i % 60, Name(i).c_str());
    text += line;
  }
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

// Each run begins with a heap that the one before did not leave in its own order.
inline void TidyHeap() {
#if defined(__GLIBC__)
  malloc_trim(0);
#endif
}

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_LISTINGS_H

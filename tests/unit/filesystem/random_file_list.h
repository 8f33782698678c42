// Random lists of files, with everything that a device or a fault can put into one.
#ifndef DAROKLEIM_TESTS_UNIT_FILESYSTEM_RANDOM_FILE_LIST_H
#define DAROKLEIM_TESTS_UNIT_FILESYSTEM_RANDOM_FILE_LIST_H

#include <cstdint>
#include <list>
#include <random>
#include <string>

#include "src/filesystem/file_info.h"

namespace darokleim::test {

class RandomFileList {
 public:
  explicit RandomFileList(unsigned seed) : random_(seed) {}

  // Roots, some with slashes at the end, with bytes that are not text, or empty.
  std::string Root() {
    using namespace std::string_literals;
    static const std::string kRoots[] = {"/sdcard", "/sdcard/",  "/",  "",    "/a b",
                                         "\xC3",    "/\xE2\x82", "//", "/\0"s};
    return kRoots[Below(std::size(kRoots))];
  }

  // Mostly below the root, in few folders, so that folders have several files.
  std::list<FileInfo> Files(const std::string& root) {
    std::list<FileInfo> files;
    for (std::size_t left = Below(30); left > 0; --left) {
      const std::string prefix = Below(10) == 0 ? Text(8) : root + "/";
      files.push_back({Number(), static_cast<std::uint32_t>(Number()), prefix + Path(),
                       Below(3) == 0 ? "" : Text(20), Below(3) == 0 ? 0 : Number()});
    }
    return files;
  }

 private:
  std::size_t Below(std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_);
  }

  // Of every number of bits.
  std::uint64_t Number() { return random_() >> Below(64); }

  std::string Path() {
    std::string path;
    for (std::size_t folders = Below(6); folders > 0; --folders) {
      static const char* const kFolders[] = {"a", "b", "", "DCIM", "a b"};
      path += (Below(8) == 0 ? Text(3) : kFolders[Below(std::size(kFolders))]) + "/";
    }
    return path + Text(12);
  }

  // Plain, or of any bytes, or of those that begin and continue characters, with quotes, slashes and zeros.
  std::string Text(std::size_t most) {
    static constexpr char kNasty[] =
        "\"\\/\b\f\n\r\t\x01\x1f\x7f\x80\xbf\xc3\xa9\xe2\x82\xac\xed\xa0\xf0\x9f\x98\xf8\xff";
    std::string text(Below(most + 1), 'x');
    const std::size_t kind = Below(4);
    for (char& c : text) {
      if (kind == 0) c = static_cast<char>(Below(256));
      if (kind == 1) c = kNasty[Below(sizeof kNasty)];
    }
    return text;
  }

  std::mt19937_64 random_;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_UNIT_FILESYSTEM_RANDOM_FILE_LIST_H

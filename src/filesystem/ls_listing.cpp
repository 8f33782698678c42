#include "src/filesystem/ls_listing.h"

#include <stdio.h>

#include <charconv>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "src/core/text.h"
#include "src/filesystem/device_path.h"
#include "src/filesystem/ls_line.h"

using namespace darokleim::sdk;

namespace {

constexpr std::string_view kLineEnd = "\r\n";

bool HasTwoLines(std::string_view text) {
  int lines = 0;
  ForEachPiece(text, kLineEnd, [&](std::string_view) { return ++lines < 2; });
  return lines == 2;
}

// Removes the backslash from every "\ " at or after begin.
void UnescapeSpaces(std::string& path, std::size_t begin) {
  std::size_t to = path.find('\\', begin);
  if (to == std::string::npos) return;
  for (std::size_t from = to; from < path.size(); ++from) {
    if (path[from] == '\\' && from + 1 < path.size() && path[from + 1] == ' ') ++from;
    path[to++] = path[from];
  }
  path.resize(to);
}

// As atoll reads them: a number that is too large is the largest one.
std::uint64_t SizeOf(std::string_view digits) {
  constexpr std::size_t kAlwaysFit = std::numeric_limits<long long>::digits10;
  if (digits.size() > kAlwaysFit) {
    long long size = std::numeric_limits<long long>::max();
    std::from_chars(digits.data(), digits.data() + digits.size(), size);
    return static_cast<std::uint64_t>(size);
  }
  std::uint64_t size = 0;
  for (const char digit : digits) size = 10 * size + static_cast<std::uint64_t>(digit - '0');
  return size;
}

FileInfo Record(std::string_view directory, const LsLine& line) {
  std::string path = JoinPath(directory, line.name);
  UnescapeSpaces(path, directory.size() + 1);
  return {SizeOf(line.size), 0, std::move(path), std::string(line.time), 0};
}

// Prints the line in one piece, whatever other threads print.
void Trace(std::string_view line) {
  flockfile(stdout);
  fwrite(line.data(), 1, line.size(), stdout);
  putc('\n', stdout);
  funlockfile(stdout);
}

}  // namespace

bool DecodeLSOut(const char* out, int len, std::list<FileInfo>* files) {
  const std::string_view text = TextOf(out, len);
  if (!HasTwoLines(text)) return false;
  std::string_view directory;
  LsLineMatcher matcher;
  ForEachPiece(text, kLineEnd, [&](std::string_view line) {
    if (line.front() == '/') {
      directory = line.substr(0, line.size() - 1);
    } else if (line.front() == '-') {
      if (const auto match = matcher.Match(line)) {
        files->push_back(Record(directory, *match));
      } else {
        Trace(line);
      }
    }
    return true;
  });
  return true;
}

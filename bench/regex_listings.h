// The listings as one would read them without further thought: a stream of lines, a regular expression, JsonCpp.
#ifndef DAROKLEIM_BENCH_REGEX_LISTINGS_H
#define DAROKLEIM_BENCH_REGEX_LISTINGS_H

#include <time.h>

#include <list>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "src/filesystem/file_info.h"

namespace darokleim::bench {

enum class Built { kOnce, kForEachLine };

class Pattern {
 public:
  Pattern(const char* text, Built built) : text_(text), built_(built), regex_(text) {}

  bool Matches(const std::string& line, std::smatch* match) const {
    if (built_ == Built::kOnce) return std::regex_match(line, *match, regex_);
    return std::regex_match(line, *match, std::regex(text_));
  }

 private:
  const char* const text_;
  const Built built_;
  const std::regex regex_;
};

template <typename Visit>
void ForEachLine(const std::string& text, Visit visit) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    visit(line);
  }
}

inline std::list<FileInfo> RegexLs(const std::string& text, Built built) {
  const Pattern pattern(
      R"(-[rwx-]{9}\s+\d+\s+\S+\s+\S+\s+(\d+)\s(\d{4}-\d{2}-\d{2}\s\d{1,2}:\d{1,2})\s+(.*))", built);
  std::list<FileInfo> files;
  std::string directory;
  ForEachLine(text, [&](const std::string& line) {
    std::smatch match;
    if (line[0] == '/') {
      directory = line.substr(0, line.size() - 1);
    } else if (line[0] == '-' && pattern.Matches(line, &match)) {
      files.push_back({std::stoull(match[1].str()), 0, directory + "/" + match[3].str(), match[2].str(), 0});
    }
  });
  return files;
}

inline std::list<FileInfo> RegexAdbLs(const std::string& directory, const std::string& text, Built built) {
  const Pattern pattern("([0-9a-f]{8}) ([0-9a-f]{8}) ([0-9a-f]{8}) (.+)", built);
  std::list<FileInfo> files;
  ForEachLine(text, [&](const std::string& line) {
    std::smatch match;
    if (!pattern.Matches(line, &match)) return;
    const auto column = [&](int number) {
      return std::stoul(match[static_cast<size_t>(number)].str(), nullptr, 16);
    };
    const auto seconds = static_cast<time_t>(column(3));
    tm local{};
    localtime_r(&seconds, &local);
    char time[24];
    strftime(time, sizeof time, "%Y-%m-%d %H:%M:%S", &local);
    files.push_back({column(2), static_cast<std::uint32_t>(column(1)), directory + "/" + match[4].str(), time,
                     column(3)});
  });
  return files;
}

inline std::list<FileInfo> RegexFind(const std::string& text, Built built) {
  const Pattern pattern("(/.+)", built);
  std::list<FileInfo> files;
  ForEachLine(text, [&](const std::string& line) {
    std::smatch match;
    if (pattern.Matches(line, &match)) files.push_back({0, 0, match[1].str(), "", 0});
  });
  return files;
}

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_REGEX_LISTINGS_H

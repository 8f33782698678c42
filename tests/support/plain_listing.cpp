#include "tests/support/plain_listing.h"

#include <time.h>

#include <cstdlib>
#include <tuple>

#include "src/core/string_helper.h"

bool operator==(const FileInfo& a, const FileInfo& b) {
  return std::tie(a.size, a.mode, a.file, a.time, a.utc_timestamp) ==
         std::tie(b.size, b.mode, b.file, b.time, b.utc_timestamp);
}

std::ostream& operator<<(std::ostream& out, const FileInfo& info) {
  return out << "\n  {" << info.size << ", 0x" << std::hex << info.mode << ", \"" << info.file << "\", \""
             << info.time << "\", 0x" << info.utc_timestamp << std::dec << "}";
}

namespace darokleim::test {

bool PlainMatchLsLine(const std::string& line, std::smatch& match) {
  static const std::regex with_links(
      R"(^-[rwx-]{9}\s+\d+\s+\S+\s+\S+\s+(\d+)\s(\d{4}-\d{2}-\d{2}\s\d{1,2}:\d{1,2})\s+(.*)\s*$)");
  static const std::regex without_links(
      R"(^-[rwx-]{9}\s+\S+\s+\S+\s+(\d+)\s(\d{4}-\d{2}-\d{2}\s\d{1,2}:\d{1,2})\s+(.*)\s*$)");
  return std::regex_match(line, match, with_links) || std::regex_match(line, match, without_links);
}

bool PlainDecodeLSOut(const std::string& text, std::list<FileInfo>* files, std::string* trace) {
  std::vector<std::string> lines;
  if (StringHelper::StringSplit(lines, text, "\r\n") < 2) return false;
  std::string directory;
  for (const std::string& line : lines) {
    std::smatch match;
    if (line[0] == '/') {
      directory = line.substr(0, line.size() - 1);
    } else if (line[0] == '-' && PlainMatchLsLine(line, match)) {
      std::string name = match[3].str();
      replace(name, "\\ ", " ");
      FileInfo info;
      info.size = static_cast<std::uint64_t>(atoll(match[1].str().c_str()));
      info.file = directory + "/" + name;
      info.time = match[2].str();
      files->push_back(info);
    } else if (line[0] == '-') {
      *trace += line + "\n";
    }
  }
  return true;
}

std::string PlainLocalTime(std::uint64_t timestamp) {
  const auto time = static_cast<time_t>(timestamp);
  const tm* const local = localtime(&time);
  char text[24] = "";
  if (local == nullptr || strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", local) == 0) return "";
  return text;
}

std::vector<FileInfo> PlainDecodeADBLSOut(const std::string& dir, const std::string& text) {
  std::vector<std::string> lines;
  StringHelper::StringSplit(lines, text, "\n");
  std::vector<FileInfo> files;
  for (const std::string& line : lines) {
    if (line.size() == 28 && line[27] == '.') continue;
    if (line.size() == 29 && line.find('.') != std::string::npos) continue;
    if (line.size() < 28) continue;
    char* end = nullptr;
    FileInfo info;
    info.mode = static_cast<std::uint32_t>(strtoul(line.c_str(), &end, 16));
    info.size = strtoul(end, &end, 16);
    info.utc_timestamp = strtoul(end, &end, 16);
    info.time = PlainLocalTime(info.utc_timestamp);
    const auto at = static_cast<std::size_t>(end - line.c_str());
    info.file = dir + "/" + (at < line.size() ? line.substr(at + 1) : "");
    files.push_back(info);
  }
  return files;
}

bool PlainDecodeFindOut(std::string text, std::list<FileInfo>* files) {
  StringHelper::StringReplace(text, "\r\r\n", "\n");
  StringHelper::StringReplace(text, "\r\n", "\n");
  StringHelper::StringTrimLeft(text, '\n');
  StringHelper::StringTrimRight(text, '\n');
  std::vector<std::string> lines;
  if (StringHelper::StringSplit(lines, text, "\n") == 0) return false;
  for (const std::string& line : lines) {
    FileInfo info;
    info.file = line;
    if (line[0] == '/') files->push_back(info);
  }
  return true;
}

}  // namespace darokleim::test

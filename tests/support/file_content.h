// Whole files, as bytes.
#ifndef DAROKLEIM_TESTS_SUPPORT_FILE_CONTENT_H
#define DAROKLEIM_TESTS_SUPPORT_FILE_CONTENT_H

#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace darokleim::test {

// Empty when there is no such file.
inline std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return std::move(content).str();
}

inline std::vector<std::string> ReadLines(const std::string& path) {
  std::istringstream text(ReadFile(path));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

inline void WriteFile(const std::string& path, const std::string& content) {
  std::ofstream(path, std::ios::binary) << content;
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_FILE_CONTENT_H

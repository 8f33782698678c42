#include <gtest/gtest.h>
#include <stdio.h>

#include <set>
#include <sstream>
#include <string>

namespace {

std::string OutputOf(const std::string& command) {
  std::string output;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return output;
  char piece[4096];
  while (const size_t length = fread(piece, 1, sizeof piece, pipe)) output.append(piece, length);
  pclose(pipe);
  return output;
}

TEST(ExportedSymbols, AreTheTwoFunctionsAndNothingElse) {
#if defined(__APPLE__)
  const std::string list = OutputOf(DAROKLEIM_NM " -gU '" DAROKLEIM_LOG_LIBRARY "'");
#else
  const std::string list = OutputOf(DAROKLEIM_NM " -D --defined-only '" DAROKLEIM_LOG_LIBRARY "'");
#endif
  std::set<std::string> names;
  std::istringstream lines(list);
  for (std::string line; std::getline(lines, line);) names.insert(line.substr(line.rfind(' ') + 1));
#if defined(__APPLE__)
  EXPECT_EQ(names, (std::set<std::string>{"_InitLogEx", "_LogEx"}));
#else
  EXPECT_EQ(names, (std::set<std::string>{"InitLogEx", "LogEx"}));
#endif
}

}  // namespace

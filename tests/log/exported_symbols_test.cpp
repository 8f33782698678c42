#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

#include "tests/support/process.h"

namespace darokleim::log {
namespace {

TEST(ExportedSymbols, AreTheTwoFunctionsAndNothingElse) {
#if defined(__APPLE__)
  const std::string list = test::RunProgram({DAROKLEIM_NM, "-gU", DAROKLEIM_LOG_LIBRARY}).output;
#else
  const std::string list =
      test::RunProgram({DAROKLEIM_NM, "-D", "--defined-only", DAROKLEIM_LOG_LIBRARY}).output;
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
}  // namespace darokleim::log

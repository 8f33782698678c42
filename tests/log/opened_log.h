// A log opened for one test, in a directory of its own, under a module name that no other test uses.
#ifndef DAROKLEIM_TESTS_LOG_OPENED_LOG_H
#define DAROKLEIM_TESTS_LOG_OPENED_LOG_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "src/platform/log_library.h"
#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::log {

class OpenedLog {
 public:
  explicit OpenedLog(const std::string& file_name = "test.log") : path_(directory_.File(file_name)) {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    module_ = std::string(test->test_suite_name()) + "." + test->name();
    opened_ = InitLogEx(nullptr, module(), path_.c_str());
  }

  bool opened() const { return opened_; }
  const char* module() const { return module_.c_str(); }
  const std::string& path() const { return path_; }
  const test::TemporaryDirectory& directory() const { return directory_; }
  std::vector<std::string> Lines() const { return test::ReadLines(path_); }

 private:
  test::TemporaryDirectory directory_;
  std::string path_;
  std::string module_;
  bool opened_ = false;
};

}  // namespace darokleim::log

#endif  // DAROKLEIM_TESTS_LOG_OPENED_LOG_H

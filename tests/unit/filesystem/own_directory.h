// A current working directory for the test, because file lists write their copy there.
#ifndef DAROKLEIM_TESTS_UNIT_FILESYSTEM_OWN_DIRECTORY_H
#define DAROKLEIM_TESTS_UNIT_FILESYSTEM_OWN_DIRECTORY_H

#include <filesystem>
#include <string>
#include <system_error>

#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::test {

class OwnDirectory {
 public:
  OwnDirectory() { std::filesystem::current_path(directory_.path()); }
  ~OwnDirectory() {
    std::error_code ignored;
    std::filesystem::current_path(before_, ignored);
  }

  const std::filesystem::path& path() const { return directory_.path(); }
  std::string side_file() const { return directory_.File("F:\\file_list.json"); }
  // Empty when there is none.
  std::string SideFileContent() const { return ReadFile(side_file()); }

 private:
  const std::filesystem::path before_ = std::filesystem::current_path();
  const TemporaryDirectory directory_;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_UNIT_FILESYSTEM_OWN_DIRECTORY_H

// A directory of a test's own, removed with everything in it when the test ends.
#ifndef DAROKLEIM_TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
#define DAROKLEIM_TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace darokleim::test {

class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string path = (std::filesystem::temp_directory_path() / "darokleim-test-XXXXXX").native();
    if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("cannot create a temporary directory");
    path_ = std::filesystem::canonical(path);
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string File(const std::string& name) const { return (path_ / name).native(); }

 private:
  std::filesystem::path path_;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

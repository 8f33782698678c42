// Replaces `ps` in a test.
#ifndef DAROKLEIM_TESTS_UNIT_SUPPORT_LISTED_PROCESSES_H
#define DAROKLEIM_TESTS_UNIT_SUPPORT_LISTED_PROCESSES_H

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/file_content.h"
#include "tests/support/process.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::test {

// As long as it lives, `ps` prints these lines, so that no process of the machine can be killed by its list. Ends the
// program when that fails.
class ListedProcesses {
 public:
  explicit ListedProcesses(const std::string& lines) : path_before_(std::getenv("PATH")) {
    WriteFile(directory_.File("lines"), kHeading + lines);
    WriteFile(directory_.File("ps"), "#!/bin/sh\nexec cat '" + directory_.File("lines") + "'\n");
    std::filesystem::permissions(directory_.File("ps"), std::filesystem::perms::owner_all);
    setenv("PATH", (directory_.path().native() + ":" + path_before_).c_str(), 1);
    if (FirstLineOfPs() == kHeading) return;
    std::fputs("ps is not the test's own\n", stderr);
    std::abort();
  }
  ~ListedProcesses() { setenv("PATH", path_before_.c_str(), 1); }
  ListedProcesses(const ListedProcesses&) = delete;
  ListedProcesses& operator=(const ListedProcesses&) = delete;

 private:
  static constexpr char kHeading[] = "    PID TTY      STAT   TIME THE TEST'S OWN\n";

  static std::string FirstLineOfPs() {
    const std::string list = RunProgram({"ps", "-ax"}).output;
    return list.substr(0, list.find('\n') + 1);
  }

  TemporaryDirectory directory_;
  std::string path_before_;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_UNIT_SUPPORT_LISTED_PROCESSES_H

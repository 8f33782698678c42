// AdbKillDaemon among real processes, where it can reach none but the test's.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>

#if defined(__linux__)
namespace {

struct Outcome {
  int exit_status;
  std::string output;
};

Outcome RunCommand(const std::string& command) {
  Outcome outcome{-1, ""};
  FILE* pipe = popen((command + " 2>&1").c_str(), "re");
  if (!pipe) return outcome;
  std::array<char, 4096> buffer;
  while (const std::size_t read = fread(buffer.data(), 1, buffer.size(), pipe)) {
    outcome.output.append(buffer.data(), read);
  }
  const int status = pclose(pipe);
  if (WIFEXITED(status)) outcome.exit_status = WEXITSTATUS(status);
  return outcome;
}

constexpr int kNoSuchCommand = 127;

// An ordinary user needs a user namespace around it, which some systems refuse; so do containers to root.
Outcome RunInNamespace(const std::string& command) {
  const Outcome as_root = RunCommand("unshare --pid --fork --mount-proc " + command);
  if (as_root.exit_status == 0) return as_root;
  return RunCommand("unshare --user --map-root-user --pid --fork --mount-proc " + command);
}

TEST(ProcessNamespaceTest, KillsRealProcessesByTheWord) {
  const Outcome allowed = RunInNamespace("true");
  ASSERT_NE(allowed.exit_status, kNoSuchCommand) << allowed.output;
  if (allowed.exit_status != 0) GTEST_SKIP() << "the system refuses PID namespaces: " << allowed.output;

  const Outcome outcome = RunInNamespace("'" DAROKLEIM_REAL_PROCESSES "'");
  EXPECT_EQ(outcome.exit_status, 0);
  EXPECT_EQ(outcome.output,
            "adb -L tcp:5037 fork-server server: killed\n"
            "/opt/tools/adb -s X logcat: killed\n"
            "vi adb.txt: killed\n"
            "adbd: alive\n"
            "my_adb: alive\n"
            "sleep: alive\n");
}

TEST(ProcessNamespaceTest, OutsideOfANamespaceTheProgramRefuses) {
  const Outcome outcome = RunCommand("'" DAROKLEIM_REAL_PROCESSES "'");
  EXPECT_EQ(outcome.exit_status, 2);
  EXPECT_EQ(outcome.output, "not in a PID namespace of its own\n");
}

}  // namespace
#endif

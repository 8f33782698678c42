// The adb server of the host: real adb, real processes, in a PID namespace of their own.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/process.h"
#include "tests/support/temporary_directory.h"

#if defined(__linux__)
namespace darokleim::test {
namespace {

TEST(ServerControlTest, StartsRestartsAndKillsARealServer) {
  const Outcome allowed = RunInProcessNamespace({"true"});
  ASSERT_NE(allowed.status, 127) << allowed.errors;
  if (allowed.status != 0) GTEST_SKIP() << "the system refuses PID namespaces: " << allowed.errors;

  const TemporaryDirectory directory;
  for (const char* program : {"adb", "busybox"})
    std::filesystem::create_symlink(PathOfProgram(program), directory.File(program));
  const Outcome outcome = RunInProcessNamespace({DAROKLEIM_SERVER_CONTROL_HOST, directory.path().native()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output,
            "server: gone\n"
            "AdbStartDaemonEx: 0\n"
            "server: answers\n"
            "AdbStartDaemonEx: 0\n"
            "AdbRestartDaemon: 0\n"
            "first server: ended\n"
            "server: answers\n"
            "vi adb.txt: killed\n"
            "adbd: alive\n"
            "my_adb: alive\n"
            "server: gone\n"
            "/opt/tools/adb -s X logcat: killed\n"
            "AdbStartDaemon: 0\n"
            "server: answers\n"
            "server: gone\n");
}

}  // namespace
}  // namespace darokleim::test
#endif

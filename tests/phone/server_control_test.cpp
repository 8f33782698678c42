// The adb server of the host: real adb, real processes, in a PID namespace of their own.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/process_namespace.h"
#include "tests/support/temporary_directory.h"

#if defined(__linux__)
namespace darokleim::phone_test {
namespace {

void LinkProgram(const std::string& program, const std::string& link) {
  std::string path = test::RunCommand("command -v " + program).output;
  path.erase(path.find('\n'));
  std::filesystem::create_symlink(path, link);
}

TEST(ServerControlTest, StartsRestartsAndKillsARealServer) {
  const test::CommandOutcome allowed = test::RunInProcessNamespace("true");
  ASSERT_NE(allowed.exit_status, 127) << allowed.output;
  if (allowed.exit_status != 0) GTEST_SKIP() << "the system refuses PID namespaces: " << allowed.output;

  const test::TemporaryDirectory directory;
  for (const char* program : {"adb", "busybox"}) LinkProgram(program, directory.File(program));
  const test::CommandOutcome outcome =
      test::RunInProcessNamespace("'" DAROKLEIM_SERVER_CONTROL_HOST "' '" + directory.path().native() + "'");
  EXPECT_EQ(outcome.exit_status, 0);
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
}  // namespace darokleim::phone_test
#endif

// AdbKillDaemon among real processes, where it can reach none but the test's.
#include "tests/support/process_namespace.h"

#include <gtest/gtest.h>

#if defined(__linux__)
namespace darokleim::sdk {
namespace {

TEST(ProcessNamespaceTest, KillsRealProcessesByTheWord) {
  const test::CommandOutcome allowed = test::RunInProcessNamespace("true");
  ASSERT_NE(allowed.exit_status, 127) << allowed.output;
  if (allowed.exit_status != 0) GTEST_SKIP() << "the system refuses PID namespaces: " << allowed.output;

  const test::CommandOutcome outcome = test::RunInProcessNamespace("'" DAROKLEIM_REAL_PROCESSES "'");
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
  const test::CommandOutcome outcome = test::RunCommand("'" DAROKLEIM_REAL_PROCESSES "'");
  EXPECT_EQ(outcome.exit_status, 2);
  EXPECT_EQ(outcome.output, "not in a PID namespace of its own\n");
}

}  // namespace
}  // namespace darokleim::sdk
#endif

// AdbKillDaemon with real processes, in a namespace where it can only reach those of the test.
#include <gtest/gtest.h>

#include "tests/support/process.h"

#if defined(__linux__)
namespace darokleim::sdk {
namespace {

TEST(ProcessNamespaceTest, KillsRealProcessesByTheWord) {
  const test::Outcome allowed = test::RunInProcessNamespace({"true"});
  ASSERT_NE(allowed.status, 127) << allowed.errors;
  if (allowed.status != 0) GTEST_SKIP() << "the system refuses PID namespaces: " << allowed.errors;

  const test::Outcome outcome = test::RunInProcessNamespace({DAROKLEIM_REAL_PROCESSES});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output,
            "adb -L tcp:5037 fork-server server: killed\n"
            "/opt/tools/adb -s X logcat: killed\n"
            "vi adb.txt: killed\n"
            "adbd: alive\n"
            "my_adb: alive\n"
            "sleep: alive\n");
}

TEST(ProcessNamespaceTest, OutsideOfANamespaceTheProgramRefuses) {
  const test::Outcome outcome = test::RunProgram({DAROKLEIM_REAL_PROCESSES});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.errors, "not in a PID namespace of its own\n");
}

}  // namespace
}  // namespace darokleim::sdk
#endif

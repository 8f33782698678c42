// Functions of the SDK through the channel, where an answer needs both: what the exit status of adb makes of a text that
// states no failure, and what a large answer costs.
#include <sys/resource.h>

#include <filesystem>

#include "darokleim.h"
#include "src/platform/log_library.h"
#include "tests/channel/channel_run.h"
#include "tests/support/sanitizers.h"

namespace darokleim::channel {
namespace {

class SdkTest : public ChannelTest {
 protected:
  static int Install(const std::string& orders) {
    const Misbehaviour misbehaviour(orders);
    return AdbInstallAppFromDevicePath("X", "/data/local/tmp/a.apk", nullptr);
  }
  static int Uninstall(const std::string& orders) {
    const Misbehaviour misbehaviour(orders);
    return AdbUninstallApp("X", "com.example.notes", 0, nullptr);
  }
};

TEST_F(SdkTest, AnInstallationThatFailsWithoutStatingItIsNotASuccess) {
  const struct {
    const char* orders;
    int code;
  } failures[] = {
      {"print:\\nException\\soccurred\\swhile\\sexecuting\\s'install':\\njava.lang.NullPointerException\\n "
       "exit:255",
       1255},
      {"print:Error:\\sUnable\\sto\\sopen\\sfile:\\s/data/local/tmp/a.apk\\n exit:1", 1001},
      {"print:Killed\\n exit:137", 1137},
      {"exit:255", 1255},
  };
  for (const auto& [orders, code] : failures) {
    EXPECT_EQ(Install(orders), code) << orders;
    EXPECT_EQ(Uninstall(orders), code) << orders;
  }
}

TEST_F(SdkTest, AnInstallationThatSucceedsIsASuccess) {
  for (const char* orders : {"print:Success\\n", "print:\\tpkg:\\s/a.apk\\nSuccess\\r\\n"}) {
    EXPECT_EQ(Install(orders), ADB_RESULT_OK) << orders;
    EXPECT_EQ(Uninstall(orders), ADB_RESULT_OK) << orders;
  }
}

// Older phones have no exit status: a text that states the failure has the same code with and without one.
TEST_F(SdkTest, AStatedFailureKeepsItsCode) {
  const struct {
    const char* text;
    int install, uninstall;
  } failures[] = {
      {"Failure\\s[INSTALL_FAILED_VERSION_DOWNGRADE]\\n", ADB_RESULT_INSTALL_VERSION_DOWNGRADE,
       ADB_RESULT_INSTALL_VERSION_DOWNGRADE},
      {"Failure\\s[INSTALL_FAILED_USER_RESTRICTED]\\n", ADB_RESULT_INSTALL_USER_RESTRICTED,
       ADB_RESULT_INSTALL_USER_RESTRICTED},
      // The space of this phone cannot be read.
      {"Failure\\s[DELETE_FAILED_INTERNAL_ERROR]\\n", ADB_RESULT_NOT_ENOUGH_SPACE, ADB_RESULT_FAILURE},
      {"Error:\\sShell\\sdoes\\snot\\shave\\spermission\\sto\\saccess\\suser\\s10\\n",
       ADB_RESULT_USER_ACCESS_DENIED, ADB_RESULT_USER_ACCESS_DENIED},
      {"write:\\sNo\\sspace\\sleft\\son\\sdevice\\n", ADB_RESULT_NO_SPACE_LEFT, ADB_RESULT_NO_SPACE_LEFT},
      {"Error:\\snot\\senough\\sspace\\n", ADB_RESULT_NOT_ENOUGH_SPACE, ADB_RESULT_NOT_ENOUGH_SPACE},
      {"/a.apk:\\sNo\\ssuch\\sfile\\sor\\sdirectory\\n", ADB_RESULT_NO_SUCH_FILE, ADB_RESULT_NO_SUCH_FILE},
      {"/system/bin/sh:\\spm:\\snot\\sfound\\n", ADB_RESULT_SHELL_NOT_FOUND, ADB_RESULT_SHELL_NOT_FOUND},
      {"/system/bin/sh:\\sno\\sclosing\\squote\\n", ADB_RESULT_NO_CLOSING_QUOTE, ADB_RESULT_NO_CLOSING_QUOTE},
  };
  for (const auto& [text, install, uninstall] : failures) {
    for (const char* end : {"", " exit:1", " exit:255"}) {
      const std::string orders = std::string("print:") + text + end;
      EXPECT_EQ(Install(orders), install) << orders;
      EXPECT_EQ(Uninstall(orders), uninstall) << orders;
    }
  }
}

TEST_F(SdkTest, AQuestionToThePackageManagerIsAnsweredByItsText) {
  const Misbehaviour nothing("exit:1");
  char path[4096];
  EXPECT_EQ(AdbGetApkPathOfInstatlled("X", "com.example.notes", path, sizeof path, nullptr),
            ADB_RESULT_NOT_FOUND);
}

// Elsewhere the unit of ru_maxrss differs; the thread sanitizer adds a copy of what is accessed.
#if defined(__linux__) && !defined(DAROKLEIM_THREAD_SANITIZED)
// In MiB, of this process at any time.
long LargestMemory() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss / 1024;
}

TEST_F(SdkTest, AnAnswerFullOfControlBytesIsHeldTwiceAtMost) {
  constexpr long kAnswer = 64;  // MiB
  const std::string log = File("adb_sdk.log");
  ASSERT_TRUE(InitLogEx(nullptr, "AdbSDK", log.c_str()));
  const long before = LargestMemory();
  EXPECT_EQ(Install("byte:1 flood:67108864 exit:1"), 1001);
  EXPECT_LT(LargestMemory() - before, 2 * kAnswer + 16);
  EXPECT_GT(LargestMemory() - before, kAnswer / 2);  // the answer was there at all
  EXPECT_LT(std::filesystem::file_size(log), 1u << 20);
}
#endif

}  // namespace
}  // namespace darokleim::channel

// Where the tool keeps its log and its resource directory, and what happens when it cannot.
#include <gmock/gmock.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/cli/tool_run.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class HostDirectoriesTest : public ToolTest {
 protected:
  HostDirectoriesTest() { MakeAdb(kModel); }

  // Succeeds although no log can be written in the directory, and says so.
  void ExpectNoLogIn(const std::string& log_directory, const Words& options) const {
    Words words = {"-s", "A", "sdk", "AdbGetPhoneProductModel", "--json"};
    words.insert(words.end(), options.begin(), options.end());
    const auto outcome = Run(words);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("{\"function\": "));
    EXPECT_EQ(outcome.output.find("Fail to init log!"), std::string::npos);
    EXPECT_THAT(outcome.errors,
                StartsWith("darokleim: no log is written: cannot write in " + log_directory + ": "));
  }

  std::string TemporaryUserDirectory() const { return File("tmp/darokleim-" + std::to_string(getuid())); }
};

#if defined(__APPLE__)
constexpr char kLogs[] = "home/Library/Logs/darokleim";
constexpr char kCache[] = "home/Library/Caches/darokleim";
#else
constexpr char kLogs[] = "home/.local/state/darokleim";
constexpr char kCache[] = "home/.cache/darokleim";
#endif

TEST_F(HostDirectoriesTest, AreBelowTheHome) {
  ASSERT_EQ(Run({"-s", "A", "sdk", "AdbGetPhoneProductModel"}).status, 0);
  EXPECT_THAT(test::ReadFile(File(std::string(kLogs) + "/adb_sdk.log")), HasSubstr("[AdbSDK]"));
  EXPECT_TRUE(std::filesystem::exists(File(std::string(kLogs) + "/adb_channel.log")));
  int links = 0;
  for (const auto& directory : std::filesystem::directory_iterator(File(kCache))) {
    EXPECT_EQ(std::filesystem::read_symlink(directory.path() / "adb"), File("bin/adb"));
    EXPECT_EQ(std::filesystem::read_symlink(directory.path() / "busybox"), "/dev/null");
    ++links;
  }
  EXPECT_EQ(links, 1);
}

TEST_F(HostDirectoriesTest, ALinkThatWasTamperedWithIsMadeAgain) {
  ASSERT_EQ(Run({"-s", "A", "sdk", "AdbGetPhoneProductModel"}).status, 0);
  const auto directory = std::filesystem::directory_iterator(File(kCache))->path();
  std::filesystem::remove(directory / "adb");
  test::WriteFile((directory / "adb").native(), "something else");
  EXPECT_EQ(Run({"-s", "A", "sdk", "AdbGetPhoneProductModel"}).status, 0);
  EXPECT_EQ(std::filesystem::read_symlink(directory / "adb"), File("bin/adb"));
}

#if defined(__linux__)
TEST_F(HostDirectoriesTest, FollowTheXdgVariables) {
  Set("XDG_CACHE_HOME", File("cache"));
  Set("XDG_STATE_HOME", File("state"));
  ASSERT_EQ(Run({"-s", "A", "sdk", "AdbGetPhoneProductModel"}).status, 0);
  EXPECT_TRUE(std::filesystem::exists(File("state/darokleim/adb_sdk.log")));
  EXPECT_TRUE(std::filesystem::exists(File("cache/darokleim")));
  EXPECT_TRUE(std::filesystem::is_empty(File("home")));
}

// Otherwise a folder that the tool is started in would choose the adb that runs.
TEST_F(HostDirectoriesTest, IgnoreXdgVariablesThatAreRelative) {
  std::filesystem::create_directory(File("work"));
  StartIn(File("work"));
  Set("XDG_CACHE_HOME", "cache");
  Set("XDG_STATE_HOME", "state");
  ASSERT_EQ(Run({"-s", "A", "sdk", "AdbGetPhoneProductModel"}).status, 0);
  EXPECT_TRUE(std::filesystem::is_empty(File("work")));
  EXPECT_TRUE(std::filesystem::exists(File(kCache)));
}

TEST_F(HostDirectoriesTest, NeedNoHomeVariable) {
  Set("HOME", "");
  Set("XDG_CACHE_HOME", File("cache"));
  Set("XDG_STATE_HOME", File("state"));
  const auto outcome = Run({"-s", "A", "sdk", "AdbGetPhoneProductModel"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
}
#endif

TEST_F(HostDirectoriesTest, OfAUserWithoutAHomeAreInTheTemporaryDirectory) {
  if (geteuid() != 0) GTEST_SKIP() << "only the superuser can become a user that the system does not know";
  constexpr uid_t kUnknownUser = 54321;
  ASSERT_EQ(getpwuid(kUnknownUser), nullptr);
  for (const char* path : {"", "tmp", "bin"}) ASSERT_EQ(chmod(File(path).c_str(), 0777), 0);
  Set("HOME", "");
  Set("PATH", File("bin") + ":/usr/bin:/bin:/usr/sbin:/sbin");
  const auto outcome = RunShell(
      "exec setpriv --reuid=54321 --regid=54321 --clear-groups \"$TOOL\" -s A sdk AdbGetPhoneProductModel");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.errors, "");
  EXPECT_TRUE(std::filesystem::exists(File("tmp/darokleim-54321/adb_sdk.log")));
}

TEST_F(HostDirectoriesTest, OfAHomeThatCannotBeWrittenAreReplaced) {
  test::WriteFile(File("file"), "");
  Set("HOME", File("file"));
  ExpectNoLogIn(File("file") + std::string(kLogs).substr(4), {});
  EXPECT_TRUE(std::filesystem::exists(TemporaryUserDirectory()));
}

TEST_F(HostDirectoriesTest, OfAnotherUserInTheTemporaryDirectoryAreNotTrusted) {
  test::WriteFile(File("file"), "");
  Set("HOME", File("file"));
  std::filesystem::create_directory(TemporaryUserDirectory());
  ASSERT_EQ(chmod(TemporaryUserDirectory().c_str(), 0777), 0);
  const auto outcome = Run({"-s", "A", "sdk", "AdbGetPhoneProductModel"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("cannot use the directory " + TemporaryUserDirectory() +
                                        ": other users can write in it"));

  std::filesystem::remove(TemporaryUserDirectory());
  std::filesystem::create_directory_symlink(File("home"), TemporaryUserDirectory());
  EXPECT_THAT(Run({"-s", "A", "sdk", "AdbGetPhoneProductModel"}).errors, HasSubstr("it is not a directory"));
}

TEST_F(HostDirectoriesTest, LogDirIsCreated) {
  ASSERT_EQ(Run({"-s", "A", "sdk", "AdbGetPhoneProductModel", "--log-dir", File("new/logs")}).status, 0);
  EXPECT_TRUE(std::filesystem::exists(File("new/logs/adb_sdk.log")));
  EXPECT_FALSE(std::filesystem::exists(File(kLogs)));
}

TEST_F(HostDirectoriesTest, LogDirMayBeRelativeToTheCurrentDirectory) {
  std::filesystem::create_directory(File("work"));
  StartIn(File("work"));
  ASSERT_EQ(Run({"-s", "A", "sdk", "AdbGetPhoneProductModel", "--log-dir", "logs"}).status, 0);
  EXPECT_TRUE(std::filesystem::exists(File("work/logs/adb_channel.log")));
}

TEST_F(HostDirectoriesTest, LogDirThatCannotBeCreatedIsToldAndTheCommandGoesOn) {
  test::WriteFile(File("file"), "");
  ExpectNoLogIn(File("file/logs"), {"--log-dir", File("file/logs")});
}

TEST_F(HostDirectoriesTest, LogDirWithSomethingInThePlaceOfTheLogIsTold) {
  std::filesystem::create_directories(File("logs/adb_sdk.log"));
  ExpectNoLogIn(File("logs"), {"--log-dir", File("logs")});
}

}  // namespace
}  // namespace darokleim::cli

// Which adb is run, and what is said of one that cannot be.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/cli/tool_run.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class AdbOptionTest : public ToolTest {
 protected:
  // An adb that shows by a serial which one it is.
  void MakeNamedAdb(const std::string& path, const std::string& serial) const {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    MakeExecutable(path, "#!/bin/sh\nprintf 'List of devices attached\\n" + serial + "\\tdevice\\n\\n'\n");
  }

  // A copy of the tool, which finds its libraries where they are installed: in lib beside its folder.
  std::string CopyTool(const std::string& name) const {
    namespace fs = std::filesystem;
    const fs::path tool = File(name);
    fs::create_directories(tool.parent_path());
    fs::copy_file(DAROKLEIM_TOOL, tool);
    fs::create_directory_symlink(fs::path(DAROKLEIM_TOOL).parent_path() / "../lib",
                                 tool.parent_path() / "../lib");
    return tool.native();
  }

  void ExpectRefused(const std::string& adb, const std::string& why) const {
    const auto outcome = Run({"--adb", adb, "devices"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, AllOf(StartsWith("darokleim: "), HasSubstr(adb), HasSubstr(why)));
  }
  // One that is found out only when it runs.
  void ExpectReported(const std::string& adb, const std::string& why) const {
    const auto outcome = Run({"--adb", adb, "sdk", "AdbGetDevices"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr(why));
  }
};

TEST_F(AdbOptionTest, ComesBeforePath) {
  MakeNamedAdb(File("bin/adb"), "FROMPATH");
  MakeNamedAdb(File("my adb's folder/adb"), "NAMED");
  EXPECT_THAT(Run({"sdk", "AdbGetDevices"}).output, HasSubstr("FROMPATH"));
  EXPECT_THAT(Run({"--adb", File("my adb's folder/adb"), "sdk", "AdbGetDevices"}).output, HasSubstr("NAMED"));
}

TEST_F(AdbOptionTest, MayBeRelativeToTheCurrentDirectory) {
  MakeNamedAdb(File("tools/adb"), "RELATIVE");
  EXPECT_THAT(RunShell("cd " + File("tools") + " && \"$TOOL\" --adb ./adb sdk AdbGetDevices").output,
              HasSubstr("RELATIVE"));
}

TEST_F(AdbOptionTest, ChangedIsNoticedByTheNextRun) {
  MakeNamedAdb(File("one/adb"), "ONE");
  MakeNamedAdb(File("two/adb"), "TWO");
  EXPECT_THAT(Run({"--adb", File("one/adb"), "sdk", "AdbGetDevices"}).output, HasSubstr("ONE"));
  EXPECT_THAT(Run({"--adb", File("two/adb"), "sdk", "AdbGetDevices"}).output, HasSubstr("TWO"));
  EXPECT_THAT(Run({"--adb", File("one/adb"), "sdk", "AdbGetDevices"}).output, HasSubstr("ONE"));
}

TEST_F(AdbOptionTest, OtherwiseTheSdkFoldersFollowPath) {
  MakeNamedAdb(File("sdk/platform-tools/adb"), "FROMSDK");
  Set("ANDROID_HOME", File("sdk"));
  EXPECT_THAT(Run({"sdk", "AdbGetDevices"}).output, HasSubstr("FROMSDK"));
  Set("ANDROID_HOME", "");
  MakeNamedAdb(File("home/Android/Sdk/platform-tools/adb"), "FROMHOME");
  EXPECT_THAT(Run({"sdk", "AdbGetDevices"}).output, HasSubstr("FROMHOME"));
}

TEST_F(AdbOptionTest, OtherwiseTheFolderBesideTheToolComesFirst) {
  const auto tool = CopyTool("app/bin/darokleim");
  std::filesystem::create_directories(File("app/bin/resources"));
  MakeNamedAdb(File("app/bin/resources/adb"), "BUNDLED");
  MakeNamedAdb(File("bin/adb"), "FROMPATH");
  EXPECT_THAT(RunShell("'" + tool + "' sdk AdbGetDevices").output, HasSubstr("BUNDLED"));
}

TEST_F(AdbOptionTest, AnInstalledToolHasItsFolderInShare) {
  const auto tool = CopyTool("prefix/bin/darokleim");
  MakeNamedAdb(File("prefix/share/darokleim/resources/adb"), "INSTALLED");
  EXPECT_THAT(RunShell("'" + tool + "' sdk AdbGetDevices").output, HasSubstr("INSTALLED"));
}

TEST_F(AdbOptionTest, WhatCannotBeRunIsPassedOverInPath) {
  test::WriteFile(File("bin/adb"), "not executable");
  MakeNamedAdb(File("later/adb"), "LATER");
  Set("PATH", ":.::" + File("bin") + ":" + File("missing") + ":" + File("later"));
  EXPECT_THAT(Run({"sdk", "AdbGetDevices"}).output, HasSubstr("LATER"));
}

TEST_F(AdbOptionTest, AMissingFileIsRefused) {
  ExpectRefused(File("nowhere"), "No such file or directory");
}

TEST_F(AdbOptionTest, ADirectoryIsRefused) {
  ExpectRefused(File("bin"), "it is a directory");
}

TEST_F(AdbOptionTest, AFileThatIsNotExecutableIsRefused) {
  test::WriteFile(File("plain"), "text");
  ExpectRefused(File("plain"), "it is not executable");
}

TEST_F(AdbOptionTest, AnEmptyFileIsRefused) {
  MakeExecutable(File("empty"), "");
  ExpectRefused(File("empty"), "it is empty");
}

TEST_F(AdbOptionTest, AScriptWithoutItsInterpreterIsRefused) {
  MakeExecutable(File("script"), "#! /no/such/interpreter -x\necho\n");
  ExpectRefused(File("script"), "it is a script for \"/no/such/interpreter\", which cannot be run");
}

TEST_F(AdbOptionTest, ABrokenLinkIsRefused) {
  std::filesystem::create_symlink("nowhere", File("link"));
  ExpectRefused(File("link"), "No such file or directory");
}

TEST_F(AdbOptionTest, APipeIsRefused) {
  ASSERT_EQ(mkfifo(File("pipe").c_str(), 0700), 0);
  ExpectRefused(File("pipe"), "it is not a regular file");
}

TEST_F(AdbOptionTest, AProgramOfAnotherProcessorIsNamed) {
  MakeExecutable(File("foreign"), std::string("\x7f"
                                              "ELF\x02\x01\x01\0\0\0\0\0\0\0\0\0\x02\0\xb7\0",
                                              20));
  ExpectReported(File("foreign"), "3002, adb cannot be started");
}

TEST_F(AdbOptionTest, OneThatCrashesIsNamed) {
  MakeExecutable(File("crashing"), "#!/bin/sh\nkill -SEGV $$\n");
  ExpectReported(File("crashing"), "2011, adb signal 11");
}

#if defined(__linux__)
TEST_F(AdbOptionTest, NoneAtAllSaysWhereToGetOne) {
  // The adb of the system is hidden behind empty folders.
  Words command = {"/usr/bin/bwrap", "--bind", "/", "/", "--dev-bind", "/dev", "/dev"};
  for (const char* folder : {"/opt/homebrew/bin", "/usr/local/bin", "/usr/lib/android-sdk/platform-tools",
                             "/opt/android-sdk/platform-tools"}) {
    if (std::filesystem::exists(folder)) command.insert(command.end(), {"--tmpfs", folder});
  }
  const auto outcome = RunProgram(command, {DAROKLEIM_TOOL, "sdk", "AdbGetDevices"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_THAT(outcome.errors, StartsWith("darokleim: cannot find adb: "));
  EXPECT_THAT(outcome.errors, HasSubstr("--adb PATH"));
}
#endif

TEST_F(AdbOptionTest, ABusyboxThatIsMissingIsRefused) {
  MakeAdb(kTwoDevices);
  const auto outcome = Run({"--busybox", File("nowhere"), "sdk", "AdbGetDevices"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("cannot use " + File("nowhere") + " as busybox: No such file"));
  EXPECT_EQ(Run({"--busybox", File("bin/adb"), "sdk", "AdbGetDevices"}).status, 0);
}

}  // namespace
}  // namespace darokleim::cli

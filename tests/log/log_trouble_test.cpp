// Files that cannot be opened, written or rotated.
#include <gmock/gmock.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/log/opened_log.h"

namespace darokleim::log {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::ExitedWithCode;
using testing::HasSubstr;

// Numbered lines of 60,000 bytes: 175 of them exceed the size at which the file is rotated.
void LogLongLines(const char* module, int count) {
  const std::string text(60'000, 'r');
  for (int line = 0; line < count; ++line) LogEx(module, 1, "%d %s", line, text.c_str());
}

// Somewhat longer than the log waits before it opens a failed file again.
void WaitForNextAttempt() {
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));
}

TEST(LogTroubleTest, AFileThatCannotBeOpenedIsReportedAndItsLinesAreDropped) {
  const test::TemporaryDirectory directory;
  test::WriteFile(directory.File("file"), "");
  EXPECT_FALSE(InitLogEx(nullptr, "LogTrouble.file", directory.File("file/below.log").c_str()));
  EXPECT_FALSE(InitLogEx(nullptr, "LogTrouble.file", directory.path().c_str())) << "a directory";
  EXPECT_FALSE(InitLogEx(nullptr, "LogTrouble.file", ""));
  EXPECT_FALSE(InitLogEx(nullptr, "LogTrouble.file", nullptr));
  EXPECT_FALSE(InitLogEx(nullptr, nullptr, directory.File("good.log").c_str()));
  LogEx("LogTrouble.file", 3, "dropped");
  EXPECT_EQ(test::ReadFile(directory.File("file")), "");
}

TEST(LogTroubleTest, APathLongerThanTheSystemAllowsIsRefused) {
  const std::string path = "/tmp/" + std::string(100'000, 'p') + ".log";
  EXPECT_FALSE(InitLogEx(nullptr, "LogTrouble.long", path.c_str()));
}

TEST(LogTroubleTest, APipeIsRefusedWithoutWaitingForItsReader) {
  const test::TemporaryDirectory directory;
  ASSERT_EQ(mkfifo(directory.File("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(InitLogEx(nullptr, "LogTrouble.pipe", directory.File("pipe").c_str()));
}

TEST(LogTroubleTest, ALinkInPlaceOfAFileIsNotFollowed) {
  const test::TemporaryDirectory directory;
  test::WriteFile(directory.File("target"), "kept");
  std::filesystem::create_symlink("target", directory.File("link.log"));
  std::filesystem::create_symlink("missing", directory.File("dangling.log"));
  EXPECT_FALSE(InitLogEx(nullptr, "LogTrouble.link", directory.File("link.log").c_str()));
  EXPECT_FALSE(InitLogEx(nullptr, "LogTrouble.link", directory.File("dangling.log").c_str()));
  LogEx("LogTrouble.link", 3, "dropped");
  EXPECT_EQ(test::ReadFile(directory.File("target")), "kept");
  EXPECT_FALSE(std::filesystem::exists(directory.File("missing")));
}

TEST(LogTroubleTest, ALinkPutInPlaceOfTheFileIsNotFollowedByTheRotation) {
  const OpenedLog log;
  test::WriteFile(log.directory().File("target"), "kept");
  LogLongLines(log.module(), 170);
  std::filesystem::remove(log.path());
  std::filesystem::create_symlink("target", log.path());
  std::filesystem::create_symlink("target", log.directory().File("test.1.log"));
  LogLongLines(log.module(), 20);
  EXPECT_EQ(test::ReadFile(log.directory().File("target")), "kept");
  EXPECT_EQ(log.Lines().size(), 16u);
}

mode_t ModeOf(const std::string& path) {
  struct stat status;
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 0777;
}

TEST(LogTroubleTest, OnlyTheUserMayReadTheFileAndItsNewDirectories) {
  umask(0);
  const OpenedLog log("new/below/test.log");
  LogLongLines(log.module(), 200);
  EXPECT_EQ(ModeOf(log.directory().File("new")), 0700u);
  EXPECT_EQ(ModeOf(log.directory().File("new/below")), 0700u);
  EXPECT_EQ(ModeOf(log.path()), 0600u);
  EXPECT_EQ(ModeOf(log.directory().File("new/below/test.1.log")), 0600u);
}

TEST(LogTroubleTest, AFileThatOthersMayReadIsTakenFromThem) {
  const test::TemporaryDirectory directory;
  test::WriteFile(directory.File("older.log"), "from an earlier version\n");
  ASSERT_EQ(chmod(directory.File("older.log").c_str(), 0644), 0);
  ASSERT_TRUE(InitLogEx(nullptr, "LogTrouble.older", directory.File("older.log").c_str()));
  EXPECT_EQ(ModeOf(directory.File("older.log")), 0600u);
}

TEST(LogTroubleTest, AModuleThatFailedMayBeOpenedElsewhere) {
  const test::TemporaryDirectory directory;
  EXPECT_FALSE(InitLogEx(nullptr, "LogTrouble.second", directory.path().c_str()));
  EXPECT_TRUE(InitLogEx(nullptr, "LogTrouble.second", directory.File("good.log").c_str()));
  LogEx("LogTrouble.second", 1, "text");
  EXPECT_EQ(test::ReadLines(directory.File("good.log")).size(), 1u);
}

TEST(LogTroubleTest, ADirectoryWithoutWritePermissionIsReported) {
  const test::TemporaryDirectory directory;
  const std::string closed = directory.File("closed");
  ASSERT_TRUE(std::filesystem::create_directory(closed));
  ASSERT_EQ(chmod(directory.path().c_str(), 0755), 0);
  ASSERT_EQ(chmod(closed.c_str(), 0555), 0);
  EXPECT_EXIT(
      {
        // The superuser may write everywhere.
        if (geteuid() == 0 && setuid(65534) != 0) exit(2);
        const bool opened = InitLogEx(nullptr, "LogTrouble.closed", (closed + "/x.log").c_str());
        LogEx("LogTrouble.closed", 3, "dropped");
        exit(opened ? 1 : 0);
      },
      ExitedWithCode(0), "^$");
}

TEST(LogTroubleTest, MissingDirectoriesAreCreated) {
  const OpenedLog log("not/there/yet.log");
  ASSERT_TRUE(log.opened());
  LogEx(log.module(), 1, "text");
  EXPECT_EQ(log.Lines().size(), 1u);
}

#if defined(__linux__)
TEST(LogTroubleTest, AFullDiskIsSilentAndQuick) {
  EXPECT_EXIT(
      {
        if (!InitLogEx(nullptr, "LogTrouble.full", "/dev/full")) exit(2);
        const auto start = std::chrono::steady_clock::now();
        for (int line = 0; line < 100'000; ++line) LogEx("LogTrouble.full", 3, "line %d", line);
        exit(std::chrono::steady_clock::now() - start < std::chrono::seconds(20) ? 0 : 1);
      },
      ExitedWithCode(0), "^$");
}
#endif

TEST(LogTroubleTest, WritingGoesOnWhenThereIsRoomAgain) {
  const OpenedLog log;
  EXPECT_EXIT(
      {
        signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        rlimit no_more_room = limit;
        no_more_room.rlim_cur = 300;  // bytes
        setrlimit(RLIMIT_FSIZE, &no_more_room);
        for (int line = 0; line < 20; ++line) LogEx(log.module(), 1, "line %d", line);
        setrlimit(RLIMIT_FSIZE, &limit);
        WaitForNextAttempt();
        LogEx(log.module(), 1, "room again");
        exit(0);
      },
      ExitedWithCode(0), "^$");
  const auto lines = log.Lines();
  ASSERT_GE(lines.size(), 3u);
  EXPECT_THAT(lines[0], EndsWith("line 0"));
  const std::string lost = std::to_string(20 + 2 - lines.size());
  EXPECT_THAT(lines[lines.size() - 2], EndsWith("lines lost while the log could not be written: " + lost));
  EXPECT_THAT(lines.back(), EndsWith("room again"));
}

TEST(LogTroubleTest, ALongLogIsRotatedAndBounded) {
  constexpr int kLines = 1100;  // 66 MB
  const OpenedLog log;
  LogLongLines(log.module(), kLines);

  std::uintmax_t total = 0;
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(log.directory().path())) {
    EXPECT_LE(entry.file_size(), 10u * 1024 * 1024) << entry.path();
    total += entry.file_size();
    ++files;
  }
  EXPECT_EQ(files, 5);
  EXPECT_LE(total, 50u * 1024 * 1024);
  const auto newest = log.Lines();
  ASSERT_FALSE(newest.empty());
  EXPECT_THAT(newest.back(), HasSubstr("] " + std::to_string(kLines - 1) + " rrr"));
  const auto previous = test::ReadLines(log.directory().File("test.1.log"));
  ASSERT_FALSE(previous.empty());
  EXPECT_THAT(previous.back(), HasSubstr("] " + std::to_string(kLines - 1 - newest.size()) + " rrr"));
}

TEST(LogTroubleTest, AFailedRotationNeitherCrashesNorEndsTheLog) {
  const OpenedLog log("logs/test.log");
  const std::string logs = log.directory().File("logs");
  LogLongLines(log.module(), 170);
  std::filesystem::rename(logs, logs + ".moved");
  test::WriteFile(logs, "in the way");
  LogLongLines(log.module(), 10);
  LogEx(log.module(), 1, "short");
  WaitForNextAttempt();
  LogEx(log.module(), 1, "the next attempt fails, too");

  std::filesystem::remove(logs);
  WaitForNextAttempt();
  LogEx(log.module(), 1, "after");
  const auto lines = log.Lines();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_THAT(lines[0], HasSubstr("lines lost while the log could not be written: "));
  EXPECT_THAT(lines[1], EndsWith("after"));
}

// Nothing looks at each line whether its file is still there.
TEST(LogTroubleTest, ARemovedFileComesBackWithTheNextRotation) {
  const OpenedLog log;
  LogEx(log.module(), 1, "before");
  std::filesystem::remove(log.path());
  LogLongLines(log.module(), 100);
  EXPECT_FALSE(std::filesystem::exists(log.path()));
  LogLongLines(log.module(), 100);
  LogEx(log.module(), 1, "after");
  const auto lines = log.Lines();
  ASSERT_FALSE(lines.empty());
  EXPECT_THAT(lines.back(), EndsWith("after"));
}

TEST(LogTroubleTest, RotationIgnoresTheCurrentDirectory) {
  const test::TemporaryDirectory directory;
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(directory.path());
  const bool opened = InitLogEx(nullptr, "LogTrouble.relative", "relative.log");
  std::filesystem::current_path(before);
  ASSERT_TRUE(opened);
  LogLongLines("LogTrouble.relative", 200);
  EXPECT_TRUE(std::filesystem::exists(directory.File("relative.log")));
  EXPECT_TRUE(std::filesystem::exists(directory.File("relative.1.log")));
  EXPECT_FALSE(std::filesystem::exists(before / "relative.log"));
}

}  // namespace
}  // namespace darokleim::log

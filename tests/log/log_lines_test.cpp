#include <errno.h>
#include <gmock/gmock.h>
#include <stdio.h>
#include <sys/resource.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/log/opened_log.h"

namespace darokleim::log {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;

TEST(LogLines, HoldTimeLevelModuleThreadAndText) {
  const OpenedLog log;
  ASSERT_TRUE(log.opened());
  LogEx(log.module(), 1, "%s Leave, return %d.", "AdbPushFile", 0);
  EXPECT_THAT(log.Lines(), ElementsAre(MatchesRegex(
                               "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} "
                               "[+-][0-9]{2}:[0-9]{2} \\[info\\] \\[LogLines\\.[A-Za-z]+\\] \\[[0-9]+\\] "
                               "AdbPushFile Leave, return 0\\.")));
}

TEST(LogLines, OfOneCallAreAlwaysOne) {
  const OpenedLog log;
  LogEx(log.module(), 1, "%s", "List of devices attached\nABC\tdevice\n\n");
  LogEx(log.module(), 1, "%s", "");
  EXPECT_THAT(log.Lines(),
              ElementsAre(EndsWith("] List of devices attached\\nABC\tdevice\\n\\n"), EndsWith("] ")));
}

TEST(LogLines, HoldTheFormatWhenItCannotBeFilledIn) {
  const OpenedLog log;
  LogEx(log.module(), 1, "wide %ls", L"\x4f60");  // the "C" locale has no text for it
  EXPECT_THAT(log.Lines(), ElementsAre(EndsWith("] wide %ls")));
}

TEST(LogLines, KeepBytesThatAreNotText) {
  const OpenedLog log;
  LogEx(log.module(), 3, "ret is %d,outbuf is:%s", 1, "\xff\xfe{}%s \xe4\xbd\xa0");
  LogEx(log.module(), 3, "with %c inside", '\0');
  EXPECT_THAT(log.Lines(), ElementsAre(EndsWith("ret is 1,outbuf is:\xff\xfe{}%s \xe4\xbd\xa0"),
                                       EndsWith("with \\x00 inside")));
}

TEST(LogLines, HoldTheFirst64KiBOfALongText) {
  const OpenedLog log;
  const std::string text(1 << 20, 'm');
  LogEx(log.module(), 1, "<%s>", text.c_str());
  EXPECT_THAT(log.Lines(), ElementsAre(EndsWith("<" + text.substr(0, 65535) +
                                                " [cut: the first 65536 of 1048578 bytes]")));
}

#if defined(__linux__)  // elsewhere the unit of ru_maxrss differs
// In KiB, of this process at any time.
long LargestMemory() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

TEST(LogLines, OfAnAnswerFullOfControlBytesCostNoMemory) {
  const OpenedLog log;
  const std::string answer(64 << 20, '\x01');
  const long before = LargestMemory();
  LogEx(log.module(), 3, "ret is %d,outbuf is:%s", 1, answer.c_str());
  EXPECT_LT(LargestMemory() - before, 4 * 1024);
  EXPECT_LT(std::filesystem::file_size(log.path()), 300u * 1024);
}
#endif

TEST(LogLines, LeaveTheCallersErrno) {
  const OpenedLog log;
  errno = EMFILE;
  LogEx(log.module(), 1, "text");
  EXPECT_EQ(errno, EMFILE);
  errno = EMFILE;
  EXPECT_FALSE(InitLogEx(nullptr, "LogLines.no such", "/dev/null/no.log"));
  EXPECT_EQ(errno, EMFILE);
}

TEST(LogLines, OfAModuleNeverOpenedAreDropped) {
  const OpenedLog log;
  LogEx("LogLines.never opened", 3, "text");
  LogEx("", 3, "text");
  EXPECT_TRUE(log.Lines().empty());
}

TEST(LogLines, OfNullArgumentsAreDropped) {
  const OpenedLog log;
  void (*log_ex)(const char*, int, const char*, ...) = &LogEx;  // no compiler check of the format
  log_ex(nullptr, 3, "text");
  log_ex(log.module(), 3, nullptr);
  EXPECT_TRUE(log.Lines().empty());
}

TEST(LogLines, GoToTheFileOfTheirModule) {
  const OpenedLog first;
  const test::TemporaryDirectory directory;
  ASSERT_TRUE(InitLogEx(&directory, "LogLines.other", directory.File("other.log").c_str()));
  LogEx(first.module(), 1, "one");
  LogEx("LogLines.other", 1, "two");
  EXPECT_THAT(first.Lines(), ElementsAre(EndsWith("one")));
  EXPECT_THAT(test::ReadLines(directory.File("other.log")),
              ElementsAre(AllOf(HasSubstr("[LogLines.other]"), EndsWith("two"))));
}

TEST(LogLines, KeepTheFirstFileOfAModule) {
  const OpenedLog log;
  const std::string second = log.directory().File("second.log");
  EXPECT_TRUE(InitLogEx(nullptr, log.module(), second.c_str()));
  LogEx(log.module(), 1, "text");
  EXPECT_EQ(log.Lines().size(), 1u);
  EXPECT_FALSE(std::filesystem::exists(second));
}

TEST(LogLines, OfTwoModulesShareAFile) {
  const OpenedLog log;
  ASSERT_TRUE(InitLogEx(nullptr, "LogLines.sharing", log.path().c_str()));
  LogEx(log.module(), 1, "one");
  LogEx("LogLines.sharing", 1, "two");
  EXPECT_THAT(log.Lines(),
              ElementsAre(EndsWith("one"), AllOf(HasSubstr("[LogLines.sharing]"), EndsWith("two"))));
}

TEST(LogLines, AreAppendedToTheContentOfTheFile) {
  const test::TemporaryDirectory directory;
  test::WriteFile(directory.File("kept.log"), "from an earlier run\n");
  ASSERT_TRUE(InitLogEx(nullptr, "LogLines.appended", directory.File("kept.log").c_str()));
  LogEx("LogLines.appended", 1, "text");
  EXPECT_THAT(test::ReadLines(directory.File("kept.log")),
              ElementsAre("from an earlier run", EndsWith("text")));
}

TEST(LogLines, OfSixtyFourThreadsStayWhole) {
  constexpr int kThreads = 64;
  constexpr int kLines = 200;
  const OpenedLog log;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&log, thread] {
      const std::string filler(static_cast<size_t>(thread) * 10, 'f');
      for (int line = 0; line < kLines; ++line) {
        LogEx(log.module(), 1, "<%d %d %s>", thread, line, filler.c_str());
      }
    });
  }
  for (auto& thread : threads) thread.join();

  std::map<int, int> next_line;  // of each thread, which must come in order
  std::map<int, std::set<long>> thread_ids;
  const auto lines = log.Lines();
  for (const auto& line : lines) {
    long thread_id = 0;
    int thread = 0;
    int number = 0;
    ASSERT_EQ(
        sscanf(line.c_str() + line.find("] [") + 3, "%*[^]]] [%ld] <%d %d ", &thread_id, &thread, &number), 3)
        << line;
    EXPECT_EQ(number, next_line[thread]++);
    EXPECT_TRUE(line.ends_with(" " + std::string(static_cast<size_t>(thread) * 10, 'f') + ">")) << line;
    thread_ids[thread].insert(thread_id);
  }
  EXPECT_EQ(lines.size(), static_cast<size_t>(kThreads) * kLines);
  ASSERT_EQ(thread_ids.size(), static_cast<size_t>(kThreads));
  std::set<long> all_ids;
  for (const auto& [thread, ids] : thread_ids) {
    EXPECT_EQ(ids.size(), 1u);
    all_ids.insert(ids.begin(), ids.end());
  }
  EXPECT_GT(all_ids.size(), 1u);
}

TEST(LogLines, OfModulesOpenedByManyThreadsAtOnceAreAllThere) {
  constexpr int kThreads = 16;
  const test::TemporaryDirectory directory;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&directory, thread] {
      const std::string module = "LogLines.opened by " + std::to_string(thread % 4);
      EXPECT_TRUE(InitLogEx(nullptr, module.c_str(), directory.File("common.log").c_str()));
      LogEx(module.c_str(), 1, "%d", thread);
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(test::ReadLines(directory.File("common.log")).size(), static_cast<size_t>(kThreads));
}

}  // namespace
}  // namespace darokleim::log

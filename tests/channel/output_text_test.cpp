// What is done to the text of a command: line ends, notices, failure lines, in one piece and in many.
#include <gmock/gmock.h>

#include <fstream>
#include <string>
#include <vector>

#include "channel/output/failure_lines.h"
#include "channel/output/line_ends.h"
#include "channel/output/outcome.h"
#include "channel/output/output_block.h"
#include "channel/output/output_buffer.h"
#include "channel/output/server_notices.h"
#include "channel/output/stream_filter.h"

namespace darokleim::channel {
namespace {

constexpr char kStarted[] = "* daemon not running; starting now at tcp:5037\n* daemon started successfully\n";

void Fill(OutputBuffer* buffer, std::string_view text) {
  while (!text.empty()) {
    const std::span<char> room = buffer->Room();
    if (room.empty()) return;
    const size_t count = text.copy(room.data(), room.size());
    buffer->Took(count);
    text.remove_prefix(count);
  }
}

std::string Converted(std::string_view text, LineEnds line_ends) {
  OutputBuffer buffer;
  Fill(&buffer, text);
  buffer.ConvertLineEnds(line_ends);
  return std::string(buffer.text());
}

TEST(LineEnds, BecomeLf) {
  EXPECT_EQ(Converted("", LineEnds::kLf), "");
  EXPECT_EQ(Converted("a\r\nb\n\r\nc", LineEnds::kLf), "a\nb\n\nc");
  EXPECT_EQ(Converted("a\r\r\nb\r\r\r\n", LineEnds::kLf), "a\nb\n");
  EXPECT_EQ(Converted("a\rb\r", LineEnds::kLf), "a\rb\r");
}

TEST(LineEnds, BecomeCrLf) {
  EXPECT_EQ(Converted("", LineEnds::kCrLf), "");
  EXPECT_EQ(Converted("a\nb\r\n\r\r\nc", LineEnds::kCrLf), "a\r\nb\r\n\r\nc");
  EXPECT_EQ(Converted("\n\n", LineEnds::kCrLf), "\r\n\r\n");
  EXPECT_EQ(Converted("a\rb\r", LineEnds::kCrLf), "a\rb\r");
}

TEST(LineEnds, OfALongTextNeedMoreRoom) {
  const std::string text(100'000, '\n');
  EXPECT_EQ(Converted(text, LineEnds::kCrLf).size(), 200'000u);
}

TEST(LineEnds, MayNotFitAnInt) {
  OutputBuffer buffer(10);
  Fill(&buffer, "a\nb\nc\nd\n");
  buffer.ConvertLineEnds(LineEnds::kCrLf);
  EXPECT_EQ(buffer.status(), kTooMuchOutput);
  EXPECT_EQ(buffer.Release(), nullptr);
}

TEST(OutputBuffer, HandsOutWhatItHoldsAndAZeroByte) {
  for (const size_t length : {0u, 1u, 65535u, 65536u, 65537u, 5'000'000u}) {
    OutputBuffer buffer;
    const std::string text(length, 'x');
    Fill(&buffer, text);
    ASSERT_EQ(buffer.text(), text);
    char* const block = buffer.Release();
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::string_view(block, length), text);
    EXPECT_EQ(block[length], '\0');
    FreeBlock(block);
  }
}

TEST(OutputBuffer, ReusesLargeBlocksWithoutMixingThem) {
  for (const char c : {'a', 'b', 'c'}) {
    OutputBuffer one, other;
    const std::string text(9'000'000, c), more(6'000'000, 'x');
    Fill(&one, text);
    Fill(&other, more);
    EXPECT_EQ(one.text(), text);
    EXPECT_EQ(other.text(), more);
    char* const block = one.Release();
    EXPECT_EQ(std::string_view(block), text);
    FreeBlock(block);
  }
}

#if defined(__linux__)
// Of this process, in KiB.
long MemoryThatTheSystemMayTake() {
  std::ifstream rollup("/proc/self/smaps_rollup");
  for (std::string word; rollup >> word;) {
    long size = 0;
    if (word == "LazyFree:" && rollup >> size) return size;
  }
  return -1;
}

TEST(OutputBuffer, LeavesTheSystemTheMemoryOfALargeOneThatWasGivenBack) {
  OutputBuffer buffer;
  Fill(&buffer, std::string(20'000'000, 'x'));
  char* const block = buffer.Release();
  const long before = MemoryThatTheSystemMayTake();
  if (before < 0) GTEST_SKIP() << "this kernel does not tell";
  FreeBlock(block);
  EXPECT_GT(MemoryThatTheSystemMayTake() - before, 10'000);
}
#endif

TEST(OutputBuffer, TakesANewBlockWhereTheLastOneIsTooSmall) {
  const std::string text(5'000'000, 'x');
  for (const size_t most : {8'000'000u, 80'000'000u, 8'000'000u}) {
    OutputBuffer buffer(most);
    Fill(&buffer, text);
    EXPECT_EQ(buffer.text(), text);
    FreeBlock(buffer.Release());
  }
}

TEST(OutputBuffer, HoldsAsMuchAsItMayAndNotAByteMore) {
  OutputBuffer full(1000);
  Fill(&full, std::string(1000, 'x'));
  EXPECT_EQ(full.text().size(), 1000u);
  EXPECT_FALSE(full.Room().empty());  // a byte more has to show
  char* const block = full.Release();
  ASSERT_NE(block, nullptr);
  FreeBlock(block);

  OutputBuffer overfull(1000);
  Fill(&overfull, std::string(1001, 'x'));
  EXPECT_TRUE(overfull.Room().empty());
  EXPECT_EQ(overfull.status(), kTooMuchOutput);
  EXPECT_EQ(overfull.Release(), nullptr);
}

TEST(ServerNotices, AreTheLinesThatLead) {
  EXPECT_EQ(LengthOfLeadingNotices(std::string(kStarted) + "value\n"), std::string(kStarted).size());
  EXPECT_EQ(LengthOfLeadingNotices("adb server version (36) doesn't match this client (41); killing...\n"
                                   "* daemon started successfully\nList of devices attached\n"),
            97u);
  EXPECT_EQ(
      LengthOfLeadingNotices("adb server is out of date.  killing...\n* daemon started successfully *\n"),
      71u);
  EXPECT_EQ(LengthOfLeadingNotices("* daemon started successfully"), 29u);
  EXPECT_EQ(LengthOfLeadingNotices("value\n* daemon started successfully\n"), 0u);
  EXPECT_EQ(LengthOfLeadingNotices(""), 0u);
  EXPECT_EQ(LengthOfLeadingNotices("* daemonic\n"), 0u);
}

TEST(ServerNotices, AreNotOtherLinesThatBeginAlike) {
  for (const char* text : {"* daemons are spirits\n", "adb servers\n", "* a list\n", "adb\n"}) {
    EXPECT_EQ(LengthOfLeadingNotices(text), 0u) << text;
  }
}

TEST(ServerNotices, AreNotFailures) {
  EXPECT_EQ(LengthOfLeadingNotices("* failed to start daemon\n"), 0u);
  EXPECT_EQ(LengthOfLeadingNotices("* daemon still not running\nerror: cannot connect to daemon\n"), 0u);
}

TEST(FailureLines, BeginWithAdbsOwnWords) {
  for (const char* line : {"error: device offline", "adb: failed to stat", "* failed to start daemon",
                           "* cannot start server", "cannot connect to daemon"}) {
    EXPECT_TRUE(IsFailureLine(line)) << line;
  }
  for (const char* line : {"", "Error: no", "ls: error: x", "error:device", " error: x", "adb", "* daemon"}) {
    EXPECT_FALSE(IsFailureLine(line)) << line;
  }
}

TEST(FailureLines, AreFoundHoweverTheTextIsCut) {
  const std::string with = "List of devices\nx\r\ncannot connect to daemon";
  const std::string without = "a error: b\ncannot connec\nerror\n* fail";
  for (size_t cut = 0; cut <= with.size(); ++cut) {
    FailureLineScanner scanner;
    scanner.Scan(std::string_view(with).substr(0, cut));
    scanner.Scan(std::string_view(with).substr(cut));
    EXPECT_TRUE(scanner.Found()) << cut;
  }
  for (size_t cut = 0; cut <= without.size(); ++cut) {
    FailureLineScanner scanner;
    scanner.Scan(std::string_view(without).substr(0, cut));
    scanner.Scan(std::string_view(without).substr(cut));
    EXPECT_FALSE(scanner.Found()) << cut;
  }
}

int Status(std::string_view arguments, ExitOutcome exit, bool failure_line) {
  return StatusOf(ReadCommand(arguments, Assist::kOff), exit, [&] { return failure_line; });
}

TEST(Outcome, IsTheTextsWhereACommandAnswersByText) {
  EXPECT_EQ(Status("shell ls /x", {ExitOutcome::kExited, 1}, false), 0);
  EXPECT_EQ(Status("shell ls /x", {ExitOutcome::kExited, 1}, true), 1001);
  EXPECT_EQ(Status("shell ls /x", {ExitOutcome::kExited, 0}, true), 0);
}

TEST(Outcome, IsTheExitStatusElsewhere) {
  EXPECT_EQ(Status("shell rm /x", {ExitOutcome::kExited, 1}, false), 1001);
  EXPECT_EQ(Status("devices", {ExitOutcome::kExited, 255}, false), 1255);
  EXPECT_EQ(Status("ls /x", {ExitOutcome::kExited, 1}, false), 1001);
  EXPECT_EQ(Status("shell rm /x", {ExitOutcome::kExited, 0}, true), 0);
}

TEST(Outcome, IsTheSignalInEveryCase) {
  EXPECT_EQ(Status("shell ls /x", {ExitOutcome::kSignalled, 9}, false), 2009);
  EXPECT_EQ(Status("devices", {ExitOutcome::kSignalled, 15}, false), 2015);
}

TEST(Outcome, IsTheTextsWhereNoExitStatusIsToBeHad) {
  EXPECT_EQ(Status("shell rm /x", {ExitOutcome::kUnknown, 0}, false), 0);
  EXPECT_EQ(Status("shell rm /x", {ExitOutcome::kUnknown, 0}, true), 1001);
  EXPECT_EQ(Status("devices", {ExitOutcome::kUnknown, 0}, true), 1001);
}

std::string Streamed(const Command& command, std::string_view text, size_t piece) {
  StreamFilter filter(command);
  std::string passed;
  for (; !text.empty(); text.remove_prefix(std::min(piece, text.size())))
    passed += filter.Pass(text.substr(0, piece));
  return passed += filter.Finish();
}

TEST(StreamFilter, GivesTheSameTextInPiecesOfAnySize) {
  struct Case {
    std::string arguments, text, expected;
  };
  const Case cases[] = {
      {"logcat", kStarted + std::string("a\r\nb\n"), "a\r\nb\n"},
      {"logcat", "* daemon", "* daemon"},
      {"logcat", "* daemon started successfully", ""},
      {"logcat", "* failed to start daemon\nx", "* failed to start daemon\nx"},
      {"start-server", kStarted, kStarted},
      {"shell ls -l /x", kStarted + std::string("a\nb\r\n\r\r\nc\r"), "a\r\nb\r\n\r\nc\r"},
      {"shell rm /x", "a\r\n\r\rb\r\r\n\r", "a\n\r\rb\n\r"},
  };
  for (const Case& c : cases) {
    const Command command = ReadCommand(c.arguments, Assist::kOn);
    for (size_t piece = 1; piece <= c.text.size(); ++piece)
      EXPECT_EQ(Streamed(command, c.text, piece), c.expected);
  }
}

TEST(StreamFilter, DoesNotWaitForTheEndOfALongLine) {
  StreamFilter filter(ReadCommand("logcat", Assist::kOff));
  EXPECT_EQ(filter.Pass("value"), "value");
  StreamFilter waiting(ReadCommand("logcat", Assist::kOff));
  EXPECT_EQ(waiting.Pass("* daemon "), "");
  EXPECT_EQ(waiting.Pass(std::string(5000, 'x')).size(), 5009u);
}

}  // namespace
}  // namespace darokleim::channel

#include "channel/output/stream_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace darokleim::channel {
namespace {

constexpr char kStartNotices[] =
    "* daemon not running; starting now at tcp:5037\n* daemon started successfully\n";

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
      {"logcat", kStartNotices + std::string("a\r\nb\n"), "a\r\nb\n"},
      {"logcat", "* daemon", "* daemon"},
      {"logcat", "* daemon started successfully", ""},
      {"logcat", "* failed to start daemon\nx", "* failed to start daemon\nx"},
      {"start-server", kStartNotices, kStartNotices},
      {"shell ls -l /x", kStartNotices + std::string("a\nb\r\n\r\r\nc\r"), "a\r\nb\r\n\r\nc\r"},
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

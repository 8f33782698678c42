#include "tools/cli/commands/device/log_lines.h"

#include <gtest/gtest.h>
#include <json/value.h>
#include <unistd.h>

#include <array>
#include <string>

namespace darokleim::cli {
namespace {

// What Output writes.
class Pipe {
 public:
  Pipe() { EXPECT_EQ(pipe(ends_.data()), 0); }
  ~Pipe() {
    close(ends_[0]);
    if (ends_[1] >= 0) close(ends_[1]);
  }
  int input() const { return ends_[1]; }
  std::string Read() {
    close(ends_[1]);
    ends_[1] = -1;
    std::string text;
    std::array<char, 4096> buffer;
    for (ssize_t size; (size = read(ends_[0], buffer.data(), buffer.size())) > 0;) {
      text.append(buffer.data(), static_cast<std::size_t>(size));
    }
    return text;
  }

 private:
  std::array<int, 2> ends_{};
};

std::string Printed(std::initializer_list<std::string_view> pieces, bool as_json) {
  Pipe pipe;
  Output output(pipe.input());
  LogLines lines(output, as_json);
  for (const auto piece : pieces) lines.Add(piece);
  lines.Finish();
  return pipe.Read();
}

TEST(ParseLogLine, KnowsItsParts) {
  const Json::Value line = ParseLogLine("11-21 10:20:30.456  1234  1250 W My Tag  : a: message");
  EXPECT_EQ(line["time"], "11-21 10:20:30.456");
  EXPECT_EQ(line["pid"], 1234);
  EXPECT_EQ(line["tid"], 1250);
  EXPECT_EQ(line["priority"], "W");
  EXPECT_EQ(line["tag"], "My Tag");
  EXPECT_EQ(line["message"], "a: message");
  EXPECT_EQ(line.size(), 6u);
}

TEST(ParseLogLine, KnowsAnEmptyMessageAndAnEmptyTag) {
  EXPECT_EQ(ParseLogLine("11-21 10:20:30.456 1 2 I Tag: ")["message"], "");
  EXPECT_EQ(ParseLogLine("11-21 10:20:30.456 1 2 I Tag:")["tag"], "Tag");
  EXPECT_EQ(ParseLogLine("11-21 10:20:30.456 1 2 I : message")["tag"], "");
}

TEST(ParseLogLine, KeepsEverythingElseAsALine) {
  for (const std::string text : {"", "--------- beginning of main", "11-21 10:20:30.456 x 2 I Tag: m",
                                 "11-21 10:20:30.456 1 2 Q Tag: m", "11-21 10:20:30.456 1 2 I",
                                 "11-21 10:20:30.456 99999999999 2 I Tag: m", "a b 1 2 I no end"}) {
    const Json::Value line = ParseLogLine(text);
    EXPECT_EQ(line["line"], text);
    EXPECT_EQ(line.size(), 1u);
  }
}

TEST(LogLines, ArePrintedWhole) {
  EXPECT_EQ(Printed({"one\ntw", "o\r\nthr", "ee"}, false), "one\ntwo\nthree\n");
  EXPECT_EQ(Printed({}, false), "");
}

TEST(LogLines, AreObjectsOnALineOfTheirOwn) {
  EXPECT_EQ(Printed({"x\xff\n"}, true), "{\"line\":\"x\\ufffd\"}\n");
}

}  // namespace
}  // namespace darokleim::cli

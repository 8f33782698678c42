#include "tools/cli/command_line/shell_line.h"

#include <gmock/gmock.h>

namespace darokleim::cli {
namespace {

using testing::ElementsAre;

std::vector<std::string> TextsOf(std::string_view line) {
  std::vector<std::string> texts;
  for (const ShellWord& word : SplitShellLine(line)) texts.push_back(word.text);
  return texts;
}

TEST(SplitShellLine, ReadsWordsAsAShell) {
  EXPECT_THAT(TextsOf("darokleim  ls /a"), ElementsAre("darokleim", "ls", "/a"));
  EXPECT_THAT(TextsOf("ls "), ElementsAre("ls", ""));
  EXPECT_THAT(TextsOf(""), ElementsAre(""));
  EXPECT_THAT(TextsOf("ls '/a b' \"c d\" e\\ f'g'\"h\""), ElementsAre("ls", "/a b", "c d", "e fgh"));
  EXPECT_THAT(TextsOf("'' \"\\\"\\$\\x\" \\"), ElementsAre("", "\"$\\x", "\\"));
}

TEST(SplitShellLine, KnowsTheQuoteThatIsOpen) {
  EXPECT_EQ(SplitShellLine("ls '/a b").back().text, "/a b");
  EXPECT_EQ(SplitShellLine("ls '/a b").back().open_quote, '\'');
  EXPECT_EQ(SplitShellLine("ls /x\"a\\\"b").back().text, "/xa\"b");
  EXPECT_EQ(SplitShellLine("ls /x\"a\\\"b").back().open_quote, '"');
  EXPECT_EQ(SplitShellLine("ls '/a' ").back().open_quote, 0);
  EXPECT_EQ(SplitShellLine("ls  /a").back().begin, 4u);
}

TEST(QuotedFor, IsReadAsItIs) {
  const std::string text = "a b'c\"d$e`f\\g;\xc3\xa4";
  EXPECT_EQ(TextsOf("x " + QuotedFor(0, text)).back(), text);
  EXPECT_EQ(TextsOf("x '" + QuotedFor('\'', text)).back(), text);
  EXPECT_EQ(TextsOf("x \"" + QuotedFor('"', text)).back(), text);
  EXPECT_EQ(QuotedFor(0, "/sdcard/my file"), "/sdcard/my\\ file");
  EXPECT_EQ(QuotedFor('\'', "/sdcard/it's"), "/sdcard/it'\\''s");
  EXPECT_EQ(QuotedFor('"', "$HOME"), "\\$HOME");
}

}  // namespace
}  // namespace darokleim::cli

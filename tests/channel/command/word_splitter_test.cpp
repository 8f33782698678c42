#include "channel/command/word_splitter.h"

#include <gmock/gmock.h>

#include <chrono>
#include <string>
#include <vector>

namespace darokleim::channel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> Split(std::string_view text) {
  std::vector<std::string> words;
  for (Word& word : SplitWords(text)) words.push_back(std::move(word.text));
  return words;
}

std::vector<std::string> SplitVerbatim(std::string_view text) {
  std::vector<std::string> words;
  WordSplitter splitter(text);
  for (Word word; splitter.NextVerbatim(&word);) words.push_back(word.text);
  return words;
}

TEST(WordSplitter, SeparatesAtWhitespace) {
  EXPECT_THAT(Split(""), IsEmpty());
  EXPECT_THAT(Split(" \t\n "), IsEmpty());
  EXPECT_THAT(Split(" -s X  shell\tls\n-l "), ElementsAre("-s", "X", "shell", "ls", "-l"));
}

TEST(WordSplitter, RemovesQuotes) {
  EXPECT_THAT(Split(R"(push "a b" 'c  d')"), ElementsAre("push", "a b", "c  d"));
  EXPECT_THAT(Split(R"('a\"b' "\" \\ \n '")"), ElementsAre(R"(a\"b)", R"(" \ \n ')"));
  EXPECT_THAT(Split(R"("" '')"), ElementsAre("", ""));
}

TEST(WordSplitter, JoinsAdjacentPieces) {
  EXPECT_THAT(Split(R"(a"b c"'d e'f)"), ElementsAre("ab cd ef"));
  EXPECT_THAT(Split(R"(""/sdcard/a"")"), ElementsAre("/sdcard/a"));
  EXPECT_THAT(Split(R"(""/a b"")"), ElementsAre("/a", "b"));
}

TEST(WordSplitter, KeepsQuotesInsideOfOthers) {
  EXPECT_THAT(Split(R"("'a b'" '"a b"')"), ElementsAre("'a b'", R"("a b")"));
}

TEST(WordSplitter, EscapesWhitespaceQuotesAndBackslashesOnly) {
  EXPECT_THAT(Split(R"(a\ b \" \' \\)"), ElementsAre("a b", "\"", "'", "\\"));
  EXPECT_THAT(Split(R"(-and \( -iname *.jpg \) \$)"),
              ElementsAre("-and", R"(\()", "-iname", "*.jpg", R"(\))", R"(\$)"));
  EXPECT_THAT(Split("a\\"), ElementsAre("a\\"));
}

TEST(WordSplitter, PassesOnWhatMeansSomethingToTheDevicesShell) {
  EXPECT_THAT(Split("df /x | grep / ; a$b (c) <d >e ~ && f"),
              ElementsAre("df", "/x", "|", "grep", "/", ";", "a$b", "(c)", "<d", ">e", "~", "&&", "f"));
}

TEST(WordSplitter, TreatsAQuoteThatIsNeverClosedAsACharacter) {
  EXPECT_THAT(Split(R"(ls ""/sdcard/it's.txt"")"), ElementsAre("ls", "/sdcard/it's.txt"));
  EXPECT_THAT(Split(R"(push "a b)"), ElementsAre("push", "\"a", "b"));
  EXPECT_THAT(Split(R"("a\")"), ElementsAre(R"("a")"));
  EXPECT_THAT(Split("'"), ElementsAre("'"));
}

TEST(WordSplitter, MarksWordsThatWereQuoted) {
  const std::vector<Word> words = SplitWords(R"(a "b" c'd' "" \"e\" it's)");
  std::vector<bool> quoted;
  for (const Word& word : words) quoted.push_back(word.quoted);
  EXPECT_THAT(quoted, ElementsAre(false, true, true, true, false, false));
}

TEST(WordSplitter, KeepsEveryByte) {
  std::string bytes;
  for (int c = 1; c < 256; ++c) {
    if (c != '"' && c != '\\') bytes += static_cast<char>(c);
  }
  EXPECT_THAT(Split("x \"" + bytes + "\""), ElementsAre("x", bytes));
}

TEST(WordSplitter, TakesTimeLinearInTheLength) {
  std::vector<std::string> pieces = {"'",     "\"",     "\\\"",    "\"a\"b ", "\"'",
                                     "'\"a ", "\"\"a ", "\"\\\" ", "'a'b\" "};
  for (const std::string& piece : pieces) {
    std::string text;
    while (text.size() < 2'000'000) text += piece;
    const auto start = std::chrono::steady_clock::now();
    SplitWords(text);
    SplitVerbatim(text);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10)) << piece;
  }
}

TEST(VerbatimWords, AreThePlainOnesWhereNothingIsQuoted) {
  EXPECT_THAT(SplitVerbatim(R"(-l  a\ b \( it's)"), ElementsAre("-l", "a b", R"(\()", "it's"));
}

TEST(VerbatimWords, ReachUpToTheClosingPair) {
  EXPECT_THAT(SplitVerbatim(R"(""/a b"" x)"), ElementsAre("/a b", "x"));
  EXPECT_THAT(SplitVerbatim(R"(""/a b"" ""/c d"")"), ElementsAre("/a b", "/c d"));
  EXPECT_THAT(SplitVerbatim(R"(""/it's "5" \ $x"")"), ElementsAre(R"(/it's "5" \ $x)"));
  EXPECT_THAT(SplitVerbatim(R"(""/a""")"), ElementsAre(R"(/a")"));
}

TEST(VerbatimWords, HaveNoQuotesOfTheirOwn) {
  EXPECT_THAT(SplitVerbatim(R"("'/a b'" "'/c d'")"), ElementsAre("/a b", "/c d"));
  EXPECT_THAT(SplitVerbatim(R"("'/it's'" "'/a"b'")"), ElementsAre("/it's", R"(/a"b)"));
  EXPECT_THAT(SplitVerbatim(R"('"/a b.apk"' '"/it's.apk"')"), ElementsAre("/a b.apk", "/it's.apk"));
}

TEST(VerbatimWords, KeepOtherQuotesAndBackslashesOfAPath) {
  EXPECT_THAT(SplitVerbatim(R"("/it's" "/c\d")"), ElementsAre("/it's", R"(/c\d)"));
  EXPECT_THAT(SplitVerbatim(R"("/a"b" "/c")"), ElementsAre(R"(/a"b)", "/c"));
  EXPECT_THAT(SplitVerbatim(R"("/a\")"), ElementsAre(R"(/a\)"));
}

TEST(VerbatimWords, MayBeEmpty) {
  EXPECT_THAT(SplitVerbatim(R"("" x "" """" '')"), ElementsAre("", "x", "", "", ""));
}

TEST(VerbatimWords, FallBackToThePlainRulesWithoutAClosingQuote) {
  EXPECT_THAT(SplitVerbatim(R"(""/a b)"), ElementsAre("/a", "b"));
  EXPECT_THAT(SplitVerbatim(R"("a b)"), ElementsAre("\"a", "b"));
  EXPECT_THAT(SplitVerbatim(R"(pre"a b"post)"), ElementsAre("prea bpost"));
}

}  // namespace
}  // namespace darokleim::channel

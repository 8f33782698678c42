#include "base/terminal_text.h"

#include <gtest/gtest.h>

namespace darokleim::base {
namespace {

TEST(EscapeControls, LeavesTextOfAnyLanguage) {
  EXPECT_EQ(EscapeControls("a b\\c"), "a b\\c");
  EXPECT_EQ(EscapeControls("f\xc3\xbcr \xe7\x85\xa7\xe7\x89\x87 \xf0\x9f\x93\xb7"),
            "f\xc3\xbcr \xe7\x85\xa7\xe7\x89\x87 \xf0\x9f\x93\xb7");
}

TEST(EscapeControls, DisarmsControlCharacters) {
  EXPECT_EQ(EscapeControls("a\nb\tc\rd"), "a\\nb\\tc\\rd");
  EXPECT_EQ(EscapeControls("\x1b[2J"), "\\x1b[2J");
  EXPECT_EQ(EscapeControls(std::string_view("\0\x7f", 2)), "\\x00\\x7f");
  EXPECT_EQ(EscapeControls("\xc2\x9b"), "\\xc2\\x9b");
}

TEST(EscapeControls, KeepsThoseThatAreAskedFor) {
  EXPECT_EQ(EscapeControls("a\nb\t", "\n"), "a\nb\\t");
}

TEST(EscapeControls, ShowsBytesThatAreNotUtf8) {
  EXPECT_EQ(EscapeControls("\xff"), "\\xff");
  EXPECT_EQ(EscapeControls("caf\xe9"), "caf\\xe9");
  EXPECT_EQ(EscapeControls("\xe7\x85"), "\\xe7\\x85");
}

TEST(EscapeControls, ShowsWhatReordersText) {
  EXPECT_EQ(EscapeControls("a\xe2\x80\xaegpj.exe"), "a\\xe2\\x80\\xaegpj.exe");
  for (const char* control : {"\xd8\x9c", "\xe2\x80\x8e", "\xe2\x80\x8f", "\xe2\x80\xaa", "\xe2\x80\xae",
                              "\xe2\x81\xa6", "\xe2\x81\xa9", "\xc2\x9b"}) {
    EXPECT_EQ(EscapeControls(control).find(control), std::string::npos);
  }
  EXPECT_EQ(EscapeControls("\xe2\x80\x93\xe2\x81\xaa"), "\xe2\x80\x93\xe2\x81\xaa");
}

}  // namespace
}  // namespace darokleim::base

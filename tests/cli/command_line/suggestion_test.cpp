#include "tools/cli/command_line/suggestion.h"

#include <gtest/gtest.h>

namespace darokleim::cli {
namespace {

const std::vector<std::string> kWords = {"devices", "ls", "pull", "push", "screenshot", "--serial", "--json"};

TEST(NearestWord, DiffersByAFewLetters) {
  EXPECT_EQ(NearestWord("device", kWords), "devices");
  EXPECT_EQ(NearestWord("dveices", kWords), "devices");
  EXPECT_EQ(NearestWord("lss", kWords), "ls");
  EXPECT_EQ(NearestWord("sl", kWords), "ls");
  EXPECT_EQ(NearestWord("pusg", kWords), "push");
  EXPECT_EQ(NearestWord("--seriall", kWords), "--serial");
}

TEST(NearestWord, MayBeginLikeIt) {
  EXPECT_EQ(NearestWord("screen", kWords), "screenshot");
  EXPECT_EQ(NearestWord("--js", kWords), "--json");
}

TEST(NearestWord, IsNotAnyWord) {
  EXPECT_EQ(NearestWord("frobnicate", kWords), "");
  EXPECT_EQ(NearestWord("x", kWords), "");
  EXPECT_EQ(NearestWord("", kWords), "");
  EXPECT_EQ(NearestWord(std::string(100000, 'l'), kWords), "");
}

}  // namespace
}  // namespace darokleim::cli

#include "src/device/miui_texts.h"

#include <gtest/gtest.h>

#include <string>

namespace darokleim::sdk {
namespace {

using namespace std::string_literals;

TEST(MiuiTextsTest, AfterFirstV) {
  EXPECT_EQ(AfterFirstV("V12\n"), "12\n");
  EXPECT_EQ(AfterFirstV("V125"), "125");
  EXPECT_EQ(AfterFirstV("MIUI V9 V10"), "9 V10");
  EXPECT_EQ(AfterFirstV("12"), "12");
  EXPECT_EQ(AfterFirstV("v12"), "v12");
  EXPECT_EQ(AfterFirstV("V"), "");
  EXPECT_EQ(AfterFirstV(""), "");
}

TEST(MiuiTextsTest, NamesBelow101AreDated) {
  for (const std::string& name : {"12"s, "11\r\n"s, "100"s, "0"s, ""s, "\n"s, "x125"s, "-125"s, " 8"s,
                                  "\0001000"s, "8 125"s, "-" + std::string(40, '9')}) {
    EXPECT_TRUE(IsDatedName(name)) << name;
  }
  for (const std::string& name : {"101"s, "125\n"s, "816"s, "130"s, " 125"s, "+125"s, "0125"s,
                                  std::string(40, '9'), std::string(1'000'000, '1')}) {
    EXPECT_FALSE(IsDatedName(name)) << name.substr(0, 50);
  }
}

TEST(MiuiTextsTest, VersionInBuildNumber) {
  const struct {
    std::string build_number;
    std::string version;
  } cases[] = {{"V13.0.4.0.SKHMIXM\r\n", "13.0.4.0"},
               {"V12.5.3.0.RKHCNXM\n", "12.5.3.0"},
               {"V9.6.1.0.MHOCNFD", "9.6.1.0"},
               {"OS1.0.3.0.TKXCNXM\n", "OS1.0.3.0"},
               {"22.6.15.DEV\n", "22.6.15"},
               {"1.V2.3", "2"},
               {"1.2V", "1"},  // the V is looked for when the end is gone
               {".", ""},
               {"V.", ""},
               {"\xff.\xfe", "\xff"},
               {"a\0b.c"s, "a\0b"s}};
  for (const auto& c : cases) {
    const auto version = VersionInBuildNumber(c.build_number);
    ASSERT_TRUE(version) << c.build_number;
    EXPECT_EQ(*version, c.version) << c.build_number;
  }
  for (const char* build_number : {"", "\n", "V130", "eng"}) {
    EXPECT_FALSE(VersionInBuildNumber(build_number)) << build_number;
  }
}

TEST(MiuiTextsTest, VersionsWith12AreCutOneCharacterAfterTheThirdDot) {
  const struct {
    std::string version;
    std::string shown;
  } cases[] = {{"12.5.3.0", "12.5.3.0"},
               {"12.0.5.10", "12.0.5.1"},
               {"12.10.3.16", "12.10.3.1"},
               {"12.10.3.6", "12.10.3.6"},
               {"12.5.3.", "12.5.3."},
               {"12.5", "12.5"},
               {"12.", "12."},
               {"12.5.3", "12.5.3"},
               {"13.12.5.55", "13.12.5.5"},
               {"112.1.2.33", "112.1.2.3"},
               {"1.2.3.12.5", "1.2.3.1"},
               {"...12.", "...1"}};
  for (const auto& c : cases) EXPECT_EQ(c.version.substr(0, ShownLength(c.version)), c.shown);
}

TEST(MiuiTextsTest, OthersAreNotCut) {
  for (const std::string& version : {""s, "12"s, "1"s, "11.10.3.16"s, "12\n.10.3.16"s, "13.0.4.10"s,
                                     "12,5.3.0.55"s, std::string(1'000'000, '.')}) {
    EXPECT_EQ(ShownLength(version), version.size()) << version.substr(0, 20);
  }
}

}  // namespace
}  // namespace darokleim::sdk

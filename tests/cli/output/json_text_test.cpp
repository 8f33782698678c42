#include "tools/cli/output/json_text.h"

#include <gtest/gtest.h>
#include <math.h>

namespace darokleim::cli {
namespace {

TEST(JsonString, IsAscii) {
  EXPECT_EQ(JsonString("a/b c"), R"("a/b c")");
  EXPECT_EQ(JsonString("\xc3\xbc\xe7\x85\xa7"), R"("\u00fc\u7167")");
  EXPECT_EQ(JsonString("\xf0\x9f\x98\x80"), R"("\ud83d\ude00")");
}

TEST(JsonString, EscapesWhatJsonForbids) {
  EXPECT_EQ(JsonString("\"\\\n\r\t\x1b\x7f"), R"("\"\\\n\r\t\u001b\u007f")");
  EXPECT_EQ(JsonString(std::string_view("\0", 1)), R"("\u0000")");
}

TEST(JsonString, KeepsEachByteThatIsNotUtf8) {
  EXPECT_EQ(JsonString("caf\xe9"), R"("caf\udce9")");
  EXPECT_EQ(JsonString("\x80\xff"), R"("\udc80\udcff")");
  EXPECT_EQ(JsonString("\xe7\x85"), R"("\udce7\udc85")");
}

// Otherwise two names would have one text.
TEST(JsonString, TakesAnEncodedSurrogateForBytes) {
  EXPECT_EQ(JsonString("\xed\xb2\x80"), R"("\udced\udcb2\udc80")");
  EXPECT_EQ(JsonString("\xc0\xaf"), R"("\udcc0\udcaf")");
}

TEST(JsonObject, HasItsMembersInOrder) {
  EXPECT_EQ(JsonObject().text(), "{}");
  EXPECT_EQ(JsonObject().Text("b", "x").Integer("a", -1).Bool("c", true).Null("d").text(),
            R"({"b": "x", "a": -1, "c": true, "d": null})");
  EXPECT_EQ(JsonObject().Unsigned("n", UINT64_MAX).Json("l", JsonStrings({"a", "b"})).text(),
            R"({"n": 18446744073709551615, "l": ["a", "b"]})");
}

TEST(JsonObject, HasNumbersThatJsonKnows) {
  EXPECT_EQ(JsonObject().Real("x", 0.25).Real("y", NAN).text(), R"({"x": 0.25, "y": null})");
}

}  // namespace
}  // namespace darokleim::cli

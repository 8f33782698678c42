// darokleim type, key, tap and swipe, on simulated phones.
#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"

namespace darokleim::cli {
namespace {

using testing::HasSubstr;

class PhoneInputTest : public PhoneToolTest {
 protected:
  std::string Records() { return phones().Control({"TEST0001", "show", "input"}).output; }

  // What the phone got, in one piece or several.
  std::string Typed() {
    constexpr std::string_view kRecord = "text ";
    std::string typed;
    std::string records = Records();
    for (std::size_t end; (end = records.find('\n')) != std::string::npos; records.erase(0, end + 1)) {
      if (records.compare(0, kRecord.size(), kRecord) == 0) {
        typed += records.substr(kRecord.size(), end - kRecord.size());
      }
    }
    return typed;
  }
};

TEST_P(PhoneInputTest, TypesWordsAsTheyAre) {
  EXPECT_EQ(Succeed({"type", "hello", "world"}), "");
  EXPECT_EQ(Typed(), "hello world");
  ExpectDocumented("type, key, tap, swipe", ParseJson(Succeed({"type", "--json", "x"})));
}

TEST_P(PhoneInputTest, TypesEveryCharacterThatAPhoneCan) {
  std::string expected;
  for (const std::string text :
       {"it's $5 & more", "say \"hi\"", "\"quoted\"", "'quoted'", "\"", "'", "back\\slash\\", "100%s sure",
        "%s", "`date`", "a;b|c>d<e", "(x)*[y]?{z}", "#!~^", "  two  spaces  "}) {
    Succeed({"type", "--", text});
    expected += text;
    EXPECT_EQ(Typed(), expected) << text;
  }
}

TEST_P(PhoneInputTest, RefusesWhatAPhoneCannotType) {
  EXPECT_THAT(Fail({"type", "gr\xc3\xbc\xc3\x9f"}), HasSubstr("ASCII"));
  EXPECT_THAT(Fail({"type", "two\nlines"}), HasSubstr("ASCII"));
  EXPECT_THAT(Fail({"type", ""}), HasSubstr("cannot type an empty text"));
  EXPECT_EQ(Run({"type"}).status, 2);
  EXPECT_EQ(Typed(), "");
}

TEST_P(PhoneInputTest, PressesKeysAndTouchesTheScreen) {
  Succeed({"key", "HOME", "26"});
  Succeed({"tap", "540", "1200"});
  Succeed({"swipe", "540", "1800", "540", "600", "--duration", "500"});
  EXPECT_EQ(Records(), "keyevent HOME\nkeyevent 26\ntap 540 1200\nswipe 540 1800 540 600 500\n");
}

TEST_P(PhoneInputTest, RefusesWrongWords) {
  for (const Words& words :
       {Words{"key", "HOME; reboot"}, Words{"key"}, Words{"tap", "1"}, Words{"tap", "x", "2"},
        Words{"swipe", "1", "2", "3"}, Words{"swipe", "1", "2", "3", "4", "--duration", "0"}}) {
    EXPECT_EQ(Run(words).status, 2) << words.back();
  }
  EXPECT_EQ(Records(), "");
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneInputTest);

}  // namespace
}  // namespace darokleim::cli

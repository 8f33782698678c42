// darokleim type, on simulated phones.
#include "tests/cli/phone_tool_test.h"

namespace darokleim::cli {
namespace {

using testing::HasSubstr;

class PhoneTypeTest : public PhoneToolTest {
 protected:
  // What the phone got, in one piece or several.
  std::string Typed() {
    constexpr std::string_view kRecord = "text ";
    std::string typed;
    std::string records = phones().Control({"TEST0001", "show", "input"}).output;
    for (std::size_t end; (end = records.find('\n')) != std::string::npos; records.erase(0, end + 1)) {
      if (records.compare(0, kRecord.size(), kRecord) == 0) {
        typed += records.substr(kRecord.size(), end - kRecord.size());
      }
    }
    return typed;
  }
};

TEST_P(PhoneTypeTest, TypesWordsAsTheyAre) {
  EXPECT_EQ(Succeed({"type", "hello", "world"}), "");
  EXPECT_EQ(Typed(), "hello world");
}

TEST_P(PhoneTypeTest, TypesEveryCharacterThatAPhoneCan) {
  std::string expected;
  for (const std::string text :
       {"it's $5 & more", "say \"hi\"", "\"quoted\"", "'quoted'", "\"", "'", "back\\slash\\", "100%s sure",
        "%s", "`date`", "a;b|c>d<e", "(x)*[y]?{z}", "#!~^", "  two  spaces  "}) {
    Succeed({"type", "--", text});
    expected += text;
    EXPECT_EQ(Typed(), expected) << text;
  }
}

TEST_P(PhoneTypeTest, RefusesWhatAPhoneCannotType) {
  EXPECT_THAT(Fail({"type", "gr\xc3\xbc\xc3\x9f"}),
              HasSubstr("only be made to type printable ASCII characters"));
  EXPECT_THAT(Fail({"type", "two\nlines"}), HasSubstr("only be made to type printable ASCII characters"));
  EXPECT_THAT(Fail({"type", ""}), HasSubstr("cannot type an empty text"));
  EXPECT_EQ(Run({"type"}).status, 2);
  EXPECT_EQ(Typed(), "");
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneTypeTest);

}  // namespace
}  // namespace darokleim::cli

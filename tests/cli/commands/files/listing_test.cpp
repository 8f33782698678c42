// The commands that list, search and measure folders, on simulated phones.
#include <set>

#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class PhoneListingTest : public PhoneWithFilesTest {
 protected:
  static std::set<std::string> Strings(const Json::Value& list, const char* member) {
    std::set<std::string> texts;
    for (const auto& entry : list)
      texts.insert(member == nullptr ? entry.asString() : entry[member].asString());
    return texts;
  }
};

TEST_P(PhoneListingTest, ATreeIsDrawn) {
  EXPECT_EQ(Succeed({"tree", "/sdcard/test"}),
            "/sdcard/test\n"
            "\u251c\u2500\u2500 a.txt\n"
            "\u251c\u2500\u2500 empty/\n"
            "\u2514\u2500\u2500 photos/\n"
            "    \u251c\u2500\u2500 2020/\n"
            "    \u2502   \u2514\u2500\u2500 b.JPG\n"
            "    \u2514\u2500\u2500 my photo.jpg\n"
            "\n3 folders, 3 files, 2.0 KiB\n");
  EXPECT_THAT(Succeed({"tree", "-a", "-L", "1", "/sdcard/test"}),
              AllOf(HasSubstr(".hidden\n"), Not(HasSubstr("2020"))));
  const auto document = ParseJson(Succeed({"tree", "--json", "/sdcard/test"}));
  ExpectDocumented("tree", document);
  EXPECT_EQ(document["entries"].size(), 6u);
  EXPECT_THAT(Fail({"tree", "/sdcard/test/a.txt"}), HasSubstr("Not a directory"));
}

TEST_P(PhoneListingTest, FilesAreFound) {
  EXPECT_EQ(Succeed({"find", "/sdcard/test", "--suffix", "*.jpg"}),
            Succeed({"find", "/sdcard/test/", "--suffix", ".JPG"}));
  const auto document =
      ParseJson(Succeed({"find", "--json", "/sdcard/test", "--suffix", "jpg", "--suffix", "txt"}));
  ExpectDocumented("find", document);
  EXPECT_THAT(Strings(document["entries"], "path"),
              UnorderedElementsAre("/sdcard/test/a.txt", "/sdcard/test/photos/my photo.jpg",
                                   "/sdcard/test/photos/2020/b.JPG"));
  EXPECT_EQ(Succeed({"find", "-0", "/sdcard/test", "--suffix", "txt"}),
            std::string("/sdcard/test/a.txt\0", 19));
  EXPECT_EQ(Succeed({"find", "/sdcard/test", "--name", "[a-c]*"}),
            "/sdcard/test/a.txt\n/sdcard/test/photos/2020/b.JPG\n");
  EXPECT_EQ(Succeed({"find", "/sdcard/test", "--type", "d", "--name", "*e*"}), "/sdcard/test/empty\n");
  EXPECT_EQ(Succeed({"find", "/sdcard/test", "--larger", "1k"}), "/sdcard/test/a.txt\n");
  EXPECT_EQ(Succeed({"find", "/sdcard/test", "--larger", "2000"}), "");
  EXPECT_EQ(Succeed({"find", "/sdcard/test", "--newer", "1d", "--name", "a.txt"}), "");
  EXPECT_EQ(Succeed({"find", "/sdcard/test", "--newer", "2020-01-01", "--name", "a.txt"}),
            "/sdcard/test/a.txt\n");
  EXPECT_EQ(Succeed({"find", "/sdcard/test", "--suffix", "nothing"}), "");
  EXPECT_THAT(Misuse({"find", "/sdcard/test", "--larger", "big"}), HasSubstr("\"big\" is not a size"));
  EXPECT_THAT(Misuse({"find", "/sdcard/test", "--newer", "soon"}), HasSubstr("\"soon\" is not a time"));
  EXPECT_THAT(Misuse({"find", "/sdcard/test", "--suffix", "a/b"}), HasSubstr("is not a valid suffix"));
}

TEST_P(PhoneListingTest, WithoutFindOnThePhoneFilesAreFound) {
  SwitchOn("no-find");
  PutOnPhone("/sdcard/a b/c.txt", "x");
  EXPECT_EQ(Succeed({"find", "/sdcard/a b", "--suffix", "txt"}), "/sdcard/a b/c.txt\n");
}

TEST_P(PhoneListingTest, AnUnreadableFolderBelowIsAFailure) {
  Shell("cd /data/local/tmp && mkdir -p r/open r/closed && touch r/open/a && chmod 000 r/closed");
  for (const char* command : {"find", "tree", "du"}) {
    SCOPED_TRACE(command);
    const auto outcome = Run({command, "/data/local/tmp/r"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("darokleim: cannot list /data/local/tmp/r/closed: "));
  }
  Shell("chmod 700 /data/local/tmp/r/closed");
}

TEST_P(PhoneListingTest, FoldersAreMeasured) {
  const auto document = ParseJson(Succeed({"du", "--json", "/sdcard/test", "/sdcard/test/photos"}));
  ExpectDocumented("du", document);
  EXPECT_EQ(document["sums"][0]["size"], 2009);
  EXPECT_EQ(document["sums"][0]["files"], 4);
  EXPECT_EQ(document["sums"][1]["size"], 8);
  EXPECT_EQ(document["sums"][1]["folders"], 1);
  EXPECT_EQ(Succeed({"du", "/sdcard/test/a.txt"}), "2.0 KiB  1 file  /sdcard/test/a.txt\n");
}

TEST_P(PhoneListingTest, FoldersOfAnyNameAreSearched) {
  for (const auto& folder : AwkwardPaths("/sdcard/awkward")) {
    SCOPED_TRACE(folder);
    PutOnPhone(folder + "/my.LOG", "x");
    EXPECT_EQ(Succeed({"find", folder, "--suffix", "log"}), folder + "/my.LOG\n");
  }
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneListingTest);

}  // namespace
}  // namespace darokleim::cli

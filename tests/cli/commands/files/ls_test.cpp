// darokleim ls, on simulated phones.
#include <algorithm>

#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class PhoneLsTest : public PhoneWithFilesTest {
 protected:
  Json::Value List(Words words) const {
    words.insert(words.begin(), {"ls", "--json"});
    const auto document = ParseJson(Succeed(words));
    ExpectDocumented("ls", document);
    return document["entries"];
  }
  static std::vector<std::string> Texts(const Json::Value& list, const char* member) {
    std::vector<std::string> texts;
    for (const auto& entry : list) texts.push_back(entry[member].asString());
    return texts;
  }
};

TEST_P(PhoneLsTest, OneFolderIsListedByName) {
  EXPECT_EQ(Succeed({"ls", "/sdcard/test"}), "a.txt\nempty\nphotos\n");
  EXPECT_EQ(Succeed({"ls", "-a", "/sdcard/test/"}), ".hidden\na.txt\nempty\nphotos\n");
  EXPECT_EQ(Succeed({"ls", "/sdcard/test/empty"}), "");
  EXPECT_THAT(Succeed({"ls"}), HasSubstr("test\n"));
}

TEST_P(PhoneLsTest, TheLongFormShowsPermissionsSizesAndTimes) {
  Set("TZ", "UTC-2");
  EXPECT_THAT(Succeed({"ls", "-l", "/sdcard/test"}),
              AllOf(ContainsRegex("-rw.......  2.0 KiB  2020-01-02 05:04:05  a.txt\n"),
                    ContainsRegex("\ndrwx.* photos\n")));
  EXPECT_THAT(Succeed({"ls", "-l", "--utc", "/sdcard/test"}), HasSubstr("  2020-01-02T03:04:05Z  a.txt\n"));
}

TEST_P(PhoneLsTest, LinksAreShownWithWhatTheyLeadTo) {
  Shell("cd /data/local/tmp && mkdir l && ln -s '/sdcard/my file' l/a && ln -s nowhere l/b && mkdir l/c");
  EXPECT_EQ(Succeed({"ls", "/data/local/tmp/l"}), "a\nb\nc\n");
  EXPECT_THAT(Succeed({"ls", "-l", "/data/local/tmp/l"}),
              AllOf(HasSubstr("  a -> /sdcard/my file\n"), HasSubstr("  b -> nowhere\n")));
  const auto list = List({"/data/local/tmp/l"});
  EXPECT_EQ(list[0]["type"], "link");
  EXPECT_EQ(list[1]["target"], "nowhere");
  EXPECT_EQ(list[2]["type"], "folder");
  // A link to a folder lists that folder; with -d it is shown itself.
  EXPECT_THAT(Succeed({"ls", "/sdcard"}), HasSubstr("test\n"));
  EXPECT_EQ(List({"-d", "/sdcard"})[0]["type"], "link");
}

TEST_P(PhoneLsTest, TheOrderIsChosen) {
  PutOnPhone("/sdcard/order/a", "1");
  PutOnPhone("/sdcard/order/b", "333");
  PutOnPhone("/sdcard/order/c", "22");
  Shell(
      "cd /sdcard/order; touch -d 2020-01-03T00:00:00Z a; touch -d 2020-01-01T00:00:00Z b; touch -d "
      "2020-01-02T00:00:00Z c");
  EXPECT_EQ(Succeed({"ls", "-r", "/sdcard/order"}), "c\nb\na\n");
  EXPECT_EQ(Succeed({"ls", "-t", "/sdcard/order"}), "a\nc\nb\n");
  EXPECT_EQ(Succeed({"ls", "-S", "/sdcard/order"}), "b\nc\na\n");
  EXPECT_EQ(Succeed({"ls", "-Sr", "/sdcard/order"}), "a\nc\nb\n");
}

TEST_P(PhoneLsTest, EverythingBelowIsListedFolderByFolder) {
  EXPECT_EQ(Succeed({"ls", "-R", "/sdcard/test"}),
            "/sdcard/test:\na.txt\nempty\nphotos\n\n"
            "/sdcard/test/empty:\n\n"
            "/sdcard/test/photos:\n2020\nmy photo.jpg\n\n"
            "/sdcard/test/photos/2020:\nb.JPG\n");
  EXPECT_THAT(Texts(List({"-R", "-a", "/sdcard/test"}), "path"),
              ElementsAre("/sdcard/test/.hidden", "/sdcard/test/a.txt", "/sdcard/test/empty",
                          "/sdcard/test/photos", "/sdcard/test/photos/2020",
                          "/sdcard/test/photos/my photo.jpg", "/sdcard/test/photos/2020/b.JPG"));
}

TEST_P(PhoneLsTest, SeveralPathsFollowEachOther) {
  EXPECT_EQ(Succeed({"ls", "/sdcard/test/photos", "/sdcard/test/a.txt", "/sdcard/test/empty"}),
            "/sdcard/test/a.txt\n\n/sdcard/test/photos:\n2020\nmy photo.jpg\n\n/sdcard/test/empty:\n");
}

TEST_P(PhoneLsTest, AnErrorOfOnePathLeavesTheOthers) {
  const auto outcome = Run({"ls", "--json", "/sdcard/none", "/sdcard/test/photos", "/sdcard/test/a.txt/"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors,
            "darokleim: cannot list /sdcard/none: No such file or directory. Paths are case-sensitive.\n"
            "darokleim: cannot list /sdcard/test/a.txt: Not a directory.\n");
  const auto document = ParseJson(outcome.output);
  ExpectDocumented("ls", document);
  EXPECT_EQ(document["entries"].size(), 2u);
  ASSERT_EQ(document["errors"].size(), 2u);
  EXPECT_EQ(document["errors"][0]["code"], "NOT_FOUND");
  EXPECT_EQ(document["errors"][0]["path"], "/sdcard/none");
  EXPECT_EQ(document["errors"][1]["code"], "NOT_A_DIRECTORY");
}

TEST_P(PhoneLsTest, AnUnreadableFolderBelowComesAfterAllTheRest) {
  const std::string root = "/data/local/tmp/r";
  Shell("cd /data/local/tmp && mkdir -p r/open r/closed && touch r/open/a r/closed/b && chmod 000 r/closed");
  const auto outcome = Run({"ls", "-R", root});
  Shell("chmod 700 /data/local/tmp/r/closed");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, AllOf(StartsWith(root + ":\nclosed\nopen\n"), EndsWith("/open:\na\n")));
  EXPECT_THAT(outcome.errors, AllOf(StartsWith("darokleim: cannot list /data/local/tmp/r/closed: "),
                                    HasSubstr("ermission denied")));
}

TEST_P(PhoneLsTest, AnyNameIsANameByteForByte) {
  Words paths = AwkwardPaths("/sdcard/awkward");
  paths.push_back("/sdcard/awkward/caf\xe9");
  paths.push_back("/sdcard/awkward/two\nlines");
  paths.push_back("/sdcard/awkward/Failure.log");
  std::string all;
  for (const auto& path : paths) PutOnPhone(path, "x");
  std::sort(paths.begin(), paths.end());
  for (const auto& path : paths) all += path + '\0';
  EXPECT_EQ(Succeed({"ls", "-a", "-0", "/sdcard/awkward"}), all);
  // Read back as the documentation says.
  const auto read_back = RunShell(
      "\"$TOOL\" ls -a --json /sdcard/awkward | python3 -c 'import json, os, sys\n"
      "for entry in json.load(sys.stdin)[\"entries\"]: sys.stdout.buffer.write(os.fsencode(entry[\"path\"]) "
      "+ b\"\\0\")'");
  EXPECT_EQ(read_back.errors, "");
  EXPECT_EQ(read_back.output, all);
}

TEST_P(PhoneLsTest, FoldersOfAnyNameAreListed) {
  for (const auto& folder : AwkwardPaths("/sdcard/folders")) {
    SCOPED_TRACE(folder);
    PutOnPhone(folder + "/file", "x");
    EXPECT_EQ(Succeed({"ls", folder}), "file\n");
  }
}

// Old encodings, damaged names.
TEST_P(PhoneLsTest, ANameThatIsNotUtf8IsRecoveredFromJson) {
  const std::string path = "/data/local/tmp/n/caf\xe9 \xff\xe7\x85\xa7";
  PutOnPhone(path, "x");
  EXPECT_THAT(Succeed({"ls", "--json", "/data/local/tmp/n"}), HasSubstr(R"("caf\udce9 \udcff\u7167")"));
  const auto recovered = RunShell(
      "\"$TOOL\" ls --json /data/local/tmp/n | python3 -c 'import json,os,sys; "
      "sys.stdout.buffer.write(os.fsencode(json.load(sys.stdin)[\"entries\"][0][\"path\"]))'");
  EXPECT_EQ(recovered.output, path) << recovered.errors;
  EXPECT_EQ(Succeed({"ls", recovered.output}), path + "\n");
}

TEST_P(PhoneLsTest, TheTimeIsLimited) {
  SwitchOn("slow=5000");
  const auto outcome = Run({"--timeout", "0.3", "ls", "/sdcard"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors,
            "darokleim: cannot list /sdcard: the time limit was reached. The limit is that of --timeout.\n");
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneLsTest);

}  // namespace
}  // namespace darokleim::cli

// The commands that list, search and measure folders, on simulated phones.
#include <filesystem>
#include <set>

#include "tests/cli/phone_tool_test.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class PhoneListingTest : public PhoneToolTest {
 protected:
  void SetUp() override {
    PutOnPhone("/sdcard/test/a.txt", std::string(2000, 'x'));
    PutOnPhone("/sdcard/test/.hidden", "x");
    PutOnPhone("/sdcard/test/photos/my photo.jpg", "12345");
    PutOnPhone("/sdcard/test/photos/2020/b.JPG", "123");
    Shell("touch -d 2020-01-02T03:04:05Z /sdcard/test/a.txt; mkdir /sdcard/test/empty");
  }

  static std::set<std::string> Strings(const Json::Value& list, const char* member) {
    std::set<std::string> texts;
    for (const auto& entry : list)
      texts.insert(member == nullptr ? entry.asString() : entry[member].asString());
    return texts;
  }
};

TEST_P(PhoneListingTest, FoldersOfAnyNameAreListed) {
  for (const auto& folder : AwkwardPaths("/sdcard/awkward")) {
    SCOPED_TRACE(folder);
    PutOnPhone(folder + "/file", "x");
    EXPECT_EQ(Succeed({"find", folder, "log"}), "");
    PutOnPhone(folder + "/my.LOG", "x");
    EXPECT_EQ(Succeed({"find", folder, "log"}), folder + "/my.LOG\n");
    EXPECT_EQ(ParseJson(Succeed({"tree", "--json", folder}))["Name"], folder);
    EXPECT_THAT(Succeed({"storage", "--free", folder}), HasSubstr("free"));
  }
}

TEST_P(PhoneListingTest, LeavesNoFileBehind) {
  Succeed({"tree", "/sdcard/test"});
  EXPECT_TRUE(std::filesystem::is_empty(File("work")));
  EXPECT_TRUE(std::filesystem::is_empty(File("tmp")));
}

TEST_P(PhoneListingTest, ATreeIsDrawn) {
  EXPECT_EQ(Succeed({"tree", "/sdcard/test/photos"}),
            "/sdcard/test/photos\n"
            "\u251c\u2500\u2500 2020/\n"
            "\u2502   \u2514\u2500\u2500 b.JPG\n"
            "\u2514\u2500\u2500 my photo.jpg\n"
            "\n1 folder, 2 files, 8 B\n");
  EXPECT_THAT(Fail({"tree", "/sdcard/test/a.txt"}), HasSubstr("it is a file, not a folder"));
}

TEST_P(PhoneListingTest, FilesAreFoundByTheEndsOfTheirNames) {
  EXPECT_EQ(Succeed({"find", "/sdcard/test/photos", "*.jpg", "png"}),
            Succeed({"find", "/sdcard/test/photos/", ".JPG"}));
  EXPECT_THAT(Strings(ParseJson(Succeed({"find", "--json", "/sdcard/test", "jpg", "txt"})), nullptr),
              UnorderedElementsAre("/sdcard/test/a.txt", "/sdcard/test/photos/my photo.jpg",
                                   "/sdcard/test/photos/2020/b.JPG"));
  EXPECT_EQ(Succeed({"find", "-0", "/sdcard/test", "txt"}), std::string("/sdcard/test/a.txt\0", 19));
  EXPECT_EQ(Succeed({"find", "/sdcard/test", "nothing"}), "");
  EXPECT_THAT(Misuse({"find", "/sdcard/test", "a;b"}), HasSubstr("is not a valid suffix"));
  EXPECT_THAT(Fail({"find", "/sdcard/test", std::string(1000, 'x')}), HasSubstr("too long"));
}

TEST_P(PhoneListingTest, WithoutFindPlainPathsAreSearchedAndOthersRefused) {
  SwitchOn("no-find");
  EXPECT_EQ(Succeed({"find", "/sdcard/test", "txt"}), "/sdcard/test/a.txt\n");
  PutOnPhone("/sdcard/a b/c.txt", "x");
  EXPECT_THAT(Fail({"find", "/sdcard/a b", "txt"}), HasSubstr("this device does not have find"));
}

TEST_P(PhoneListingTest, WithoutABusyboxNothingIsMeasured) {
  EXPECT_THAT(Fail({"du", "/sdcard/test"}), HasSubstr("--busybox PATH"));
  EXPECT_EQ(Shell("ls /data/local/tmp"), "");
}

TEST_P(PhoneListingTest, FoldersAreMeasured) {
  test::WriteFile(File("busybox"), "for devices");
  const auto sizes = ParseJson(
      Succeed({"--busybox", File("busybox"), "du", "--json", "/sdcard/test", "/sdcard/test/photos"}));
  EXPECT_EQ(sizes[0]["path"], "/sdcard/test");
  EXPECT_GE(sizes[0]["size"].asUInt64(), 2008u);
  EXPECT_LT(sizes[1]["size"].asUInt64(), sizes[0]["size"].asUInt64());
  EXPECT_THAT(Succeed({"du", "/sdcard/test"}), HasSubstr("KiB  /sdcard/test\n"));
}

TEST_P(PhoneListingTest, StorageIsShown) {
  const auto storage = ParseJson(Succeed({"storage", "--json"}));
  EXPECT_EQ(storage["shared"], "/sdcard");
  EXPECT_THAT(Strings(storage["volumes"], "path"),
              UnorderedElementsAre("/storage/emulated/0", "/storage/1A2B-3C4D"));
  for (const auto& volume : storage["volumes"]) EXPECT_GT(volume["free"].asUInt64(), 0u);
  const auto text = Succeed({"storage"});
  EXPECT_THAT(text, AllOf(StartsWith("shared storage  /sdcard\n"), HasSubstr("/storage/1A2B-3C4D")));
}

TEST_P(PhoneListingTest, BytesThatAreNotUtf8AreOwnedUpTo) {
  PutOnPhone("/sdcard/latin/caf\xe9", "x");
  EXPECT_EQ(Run({"stat", "/sdcard/latin/caf\xe9"}).status, 0);
  EXPECT_THAT(Run({"stat", "/sdcard/latin/caf\xe9"}).output, HasSubstr("/sdcard/latin/caf\xe9\n"));
  EXPECT_EQ(ParseJson(Run({"stat", "--json", "/sdcard/latin/caf\xe9"}).output)[0]["path"],
            "/sdcard/latin/caf\xef\xbf\xbd");
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneListingTest);

}  // namespace
}  // namespace darokleim::cli

// The commands that look at and change single files, on simulated phones.
#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kFolder[] = "/sdcard/test";

class PhoneFilesTest : public PhoneToolTest {
 protected:
  bool IsThere(const std::string& path) const { return Run({"-q", "stat", path}).status == 0; }
};

TEST_P(PhoneFilesTest, AFileLivesUnderAnyName) {
  PutOnPhone("/sdcard/original", "content");
  Shell("mkdir /sdcard/test");
  for (const auto& path : AwkwardPaths(kFolder)) {
    SCOPED_TRACE(path);
    EXPECT_FALSE(IsThere(path));
    EXPECT_EQ(Succeed({"cp", "/sdcard/original", path}), "");
    EXPECT_EQ(ReadFromPhone(path), "content");
    const auto entry = ParseJson(Succeed({"stat", "--json", path}))["entries"][0];
    EXPECT_EQ(entry["path"], path);
    EXPECT_EQ(entry["size"], 7);
    EXPECT_EQ(entry["type"], "file");
    EXPECT_EQ(Succeed({"chmod", "600", path}), "");
    EXPECT_EQ(Succeed({"mv", path, "/sdcard/moved"}), "");
    EXPECT_FALSE(IsThere(path));
    EXPECT_EQ(Succeed({"mv", "/sdcard/moved", path}), "");
    EXPECT_EQ(Succeed({"rm", path}), "");
    EXPECT_FALSE(IsThere(path));
  }
  EXPECT_EQ(Shell("ls -a /sdcard/test | grep -v '^\\.*$'"), "");
}

TEST_P(PhoneFilesTest, AFolderLivesUnderAnyName) {
  PutOnPhone("/sdcard/original", "content");
  Shell("mkdir /sdcard/test");
  for (const auto& path : AwkwardPaths(kFolder)) {
    SCOPED_TRACE(path);
    EXPECT_EQ(Succeed({"mkdir", "-p", path + "/in it"}), "");
    EXPECT_EQ(Succeed({"cp", "/sdcard/original", path}), "");
    EXPECT_EQ(ReadFromPhone(path + "/original"), "content");
    EXPECT_THAT(Fail({"rm", path}), HasSubstr(": Directory not empty"));
    EXPECT_EQ(Succeed({"rm", "-r", path}), "");
    EXPECT_FALSE(IsThere(path));
  }
}

TEST_P(PhoneFilesTest, AModeIsChanged) {
  PutOnPhone("/data/local/tmp/my $file", "x");
  const auto document = ParseJson(Succeed({"chmod", "--json", "640", "/data/local/tmp/my $file"}));
  ExpectDocumented("chmod", document);
  EXPECT_EQ(document["changed"][0]["mode"], "0640");
  EXPECT_THAT(Shell("ls -l /data/local/tmp"), HasSubstr("-rw-r-----"));
  Succeed({"chmod", "a+x", "/data/local/tmp/my $file"});
  EXPECT_THAT(Shell("ls -l /data/local/tmp"), HasSubstr("-rwxr-x--x"));
  Succeed({"chmod", "u-x,go=", "/data/local/tmp/my $file"});
  EXPECT_THAT(Shell("ls -l /data/local/tmp"), HasSubstr("-rw-------"));
  EXPECT_THAT(Misuse({"chmod", "u+y", "/data/local/tmp/my $file"}), HasSubstr("\"u+y\" is not a valid mode"));
}

TEST_P(PhoneFilesTest, StatShowsSizeTimeAndLinks) {
  PutOnPhone("/data/local/tmp/a.txt", std::string(2000, 'x'));
  Shell(
      "cd /data/local/tmp; touch -d 2020-01-02T03:04:05Z a.txt; chmod 640 a.txt; ln -s a.txt link; ln -s "
      "none broken");
  EXPECT_EQ(Succeed({"stat", "--utc", "/data/local/tmp/a.txt"}),
            "path      /data/local/tmp/a.txt\n"
            "type      file\n"
            "size      2.0 KiB (2000 bytes)\n"
            "modified  2020-01-02T03:04:05Z\n"
            "mode      -rw-r-----\n");
  const auto document =
      ParseJson(Succeed({"stat", "--json", "/data/local/tmp/link", "/data/local/tmp/broken"}));
  ExpectDocumented("stat", document);
  EXPECT_EQ(document["entries"][0]["type"], "link");
  EXPECT_EQ(document["entries"][0]["target"], "a.txt");
  EXPECT_EQ(document["entries"][1]["target"], "none");
}

TEST_P(PhoneFilesTest, AMissingPathIsNamed) {
  for (const Words& command :
       {Words{"stat", "/sdcard/none"}, Words{"rm", "/sdcard/none"}, Words{"cp", "/sdcard/none", "/sdcard/b"},
        Words{"mv", "/sdcard/none", "/sdcard/b"}, Words{"tree", "/sdcard/none"},
        Words{"find", "/sdcard/none"}, Words{"chmod", "644", "/sdcard/none"},
        Words{"-q", "pull", "/sdcard/none"}}) {
    SCOPED_TRACE(command[0]);
    EXPECT_THAT(Fail(command),
                AllOf(StartsWith("darokleim: cannot "), HasSubstr("/sdcard/none"),
                      HasSubstr(": No such file or directory"), EndsWith("Paths are case-sensitive.\n")));
  }
  EXPECT_EQ(Succeed({"rm", "-f", "/sdcard/none"}), "");
}

TEST_P(PhoneFilesTest, ARefusalOfTheDeviceIsAFailure) {
  PutOnPhone("/sdcard/a", "x");
  for (const Words& command : {Words{"mkdir", "/system/b"}, Words{"cp", "/sdcard/a", "/system/b"},
                               Words{"mv", "/sdcard/a", "/system/b"}, Words{"rm", "/system/bin/toybox"}}) {
    SCOPED_TRACE(command[0]);
    EXPECT_THAT(Fail(command), HasSubstr("darokleim: cannot "));
  }
  EXPECT_TRUE(IsThere("/sdcard/a"));
  EXPECT_TRUE(IsThere("/system/bin/toybox"));
}

TEST_P(PhoneFilesTest, SeveralFilesGoIntoAFolder) {
  PutOnPhone("/sdcard/a", "1");
  PutOnPhone("/sdcard/b", "2");
  PutOnPhone("/sdcard/to/b", "older");
  EXPECT_THAT(Fail({"mv", "/sdcard/a", "/sdcard/b", "/sdcard/none"}), HasSubstr("it is not a folder"));
  const auto outcome = Run({"mv", "-n", "--json", "/sdcard/a", "/sdcard/b", "/sdcard/to"});
  EXPECT_EQ(outcome.status, 1);
  const auto document = ParseJson(outcome.output);
  ExpectDocumented("mv", document);
  EXPECT_EQ(document["done"][0]["target"], "/sdcard/to/a");
  EXPECT_EQ(document["errors"][0]["code"], "EXISTS");
  EXPECT_EQ(ReadFromPhone("/sdcard/to/b"), "older");
  ExpectDocumented("cp", ParseJson(Succeed({"cp", "--json", "/sdcard/b", "/sdcard/to"})));
  EXPECT_EQ(ReadFromPhone("/sdcard/to/b"), "2");
}

TEST_P(PhoneFilesTest, AFolderIsCopiedOnRequestAndNotIntoItself) {
  PutOnPhone("/sdcard/f/sub/a", "1");
  EXPECT_THAT(Fail({"cp", "/sdcard/f", "/sdcard/g"}), HasSubstr("it is a folder; -r copies folders."));
  Succeed({"cp", "-r", "/sdcard/f", "/sdcard/g"});
  EXPECT_EQ(ReadFromPhone("/sdcard/g/sub/a"), "1");
  EXPECT_THAT(Fail({"cp", "-r", "/sdcard/f", "/sdcard/f/sub"}), HasSubstr("that is inside of it"));
  EXPECT_THAT(Fail({"mv", "/sdcard/f", "/sdcard/f/sub"}), HasSubstr("that is inside of it"));
  EXPECT_THAT(Fail({"mv", "/sdcard/f", "/sdcard/f"}), HasSubstr("that is inside of it"));
}

TEST_P(PhoneFilesTest, RemovingGoesOnAfterAnError) {
  PutOnPhone("/sdcard/a", "x");
  PutOnPhone("/sdcard/b/c", "x");
  const auto outcome = Run({"rm", "--json", "/sdcard/none", "/sdcard/b", "/sdcard/a"});
  EXPECT_EQ(outcome.status, 1);
  const auto document = ParseJson(outcome.output);
  ExpectDocumented("rm", document);
  EXPECT_EQ(document["errors"].size(), 2u);
  EXPECT_EQ(document["removed"][0], "/sdcard/a");
  EXPECT_TRUE(IsThere("/sdcard/b/c"));
  EXPECT_THAT(Misuse({"rm", "-r", "/sdcard/b/."}), HasSubstr("must not end in /."));
}

TEST_P(PhoneFilesTest, AFolderIsMade) {
  ExpectDocumented("mkdir", ParseJson(Succeed({"mkdir", "--json", "/sdcard/new"})));
  EXPECT_THAT(Fail({"mkdir", "/sdcard/new"}), HasSubstr("File exists"));
  EXPECT_THAT(Fail({"mkdir", "/sdcard/x/y"}), HasSubstr("No such file or directory"));
  Succeed({"mkdir", "-p", "/sdcard/new", "/sdcard/x/y"});
  EXPECT_TRUE(IsThere("/sdcard/x/y"));
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneFilesTest);

}  // namespace
}  // namespace darokleim::cli

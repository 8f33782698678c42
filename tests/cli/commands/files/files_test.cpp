// The commands that look at and change single files, on simulated phones.
#include "tests/cli/phone_tool_test.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kFolder[] = "/sdcard/test";

class PhoneFilesTest : public PhoneToolTest {
 protected:
  bool IsThere(const std::string& path) const {
    const auto outcome = Run({"exists", path});
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output, (outcome.status == 0 ? "yes  " : "no  ") + path + "\n");
    return outcome.status == 0;
  }
};

TEST_P(PhoneFilesTest, AFileLivesUnderAnyName) {
  PutOnPhone("/sdcard/original", "content");
  Shell("mkdir /sdcard/test");
  for (const auto& path : AwkwardPaths(kFolder)) {
    SCOPED_TRACE(path);
    EXPECT_FALSE(IsThere(path));
    EXPECT_EQ(Succeed({"cp", "/sdcard/original", path}), "");
    EXPECT_TRUE(IsThere(path));
    EXPECT_EQ(ReadFromPhone(path), "content");
    const auto facts = ParseJson(Succeed({"stat", "--json", path}))[0];
    EXPECT_EQ(facts["path"], path);
    EXPECT_EQ(facts["size"], 7);
    EXPECT_EQ(facts["type"], "file");
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
  for (const auto& path : AwkwardPaths(kFolder)) {
    SCOPED_TRACE(path);
    EXPECT_EQ(Succeed({"mkdir", path + "/in it"}), "");
    EXPECT_EQ(ParseJson(Succeed({"stat", "--json", path}))[0]["type"], "folder");
    EXPECT_EQ(Succeed({"cp", "/sdcard/original", path}), "");
    EXPECT_EQ(ReadFromPhone(path + "/original"), "content");
    EXPECT_TRUE(IsThere(path + "/original"));
    EXPECT_THAT(Fail({"rm", path}), HasSubstr("it is a folder"));
  }
}

TEST_P(PhoneFilesTest, AModeIsChanged) {
  PutOnPhone("/data/local/tmp/my $file", "x");
  Succeed({"chmod", "640", "/data/local/tmp/my $file"});
  EXPECT_THAT(Shell("ls -l /data/local/tmp"), HasSubstr("-rw-r-----"));
  Succeed({"chmod", "a+x", "/data/local/tmp/my $file"});
  EXPECT_THAT(Shell("ls -l /data/local/tmp"), HasSubstr("-rwxr-x--x"));
  EXPECT_THAT(Misuse({"chmod", "u+y", "/data/local/tmp/my $file"}), HasSubstr("\"u+y\" is not a valid mode"));
  EXPECT_THAT(Fail({"chmod", "644", "/data/local/tmp/none"}),
              HasSubstr("No such file: /data/local/tmp/none. Paths are case-sensitive."));
}

TEST_P(PhoneFilesTest, StatShowsSizeAndTime) {
  PutOnPhone("/sdcard/a.txt", std::string(2000, 'x'));
  Shell("touch -d 2020-01-02T03:04:05Z /sdcard/a.txt");
  Set("TZ", "UTC");
  EXPECT_EQ(Succeed({"stat", "/sdcard/a.txt"}),
            "path      /sdcard/a.txt\n"
            "type      file\n"
            "size      2.0 KiB (2000 bytes)\n"
            "modified  2020-01-02 03:04:05\n");
  for (const Words& options : {Words{}, Words{"--time-from-folder"}}) {
    Words command = {"stat", "--json", "/sdcard/a.txt"};
    command.insert(command.end(), options.begin(), options.end());
    const auto facts = ParseJson(Succeed(command))[0];
    EXPECT_EQ(facts["modified"], "2020-01-02T03:04:05Z");
    EXPECT_EQ(facts["modified_seconds"], 1577934245);
  }
}

TEST_P(PhoneFilesTest, WithoutStatFilesAndFoldersAreStillDistinguished) {
  PutOnPhone("/sdcard/my file", "12345");
  SwitchOn("no-stat");
  EXPECT_TRUE(IsThere("/sdcard/my file"));
  EXPECT_TRUE(IsThere("/sdcard"));
  EXPECT_FALSE(IsThere("/sdcard/none"));
  EXPECT_FALSE(IsThere("/sdcard/my file/none"));
  const auto facts = ParseJson(Succeed({"stat", "--json", "/sdcard/my file"}))[0];
  EXPECT_EQ(facts["type"], "file");
  EXPECT_EQ(facts["size"], 5);
}

TEST_P(PhoneFilesTest, AMissingPathIsNamed) {
  const std::string no_such_file = ". No such file: /sdcard/none. Paths are case-sensitive.\n";
  for (const Words& command :
       {Words{"stat", "/sdcard/none"}, Words{"rm", "/sdcard/none"}, Words{"cp", "/sdcard/none", "/sdcard/b"},
        Words{"mv", "/sdcard/none", "/sdcard/b"}, Words{"tree", "/sdcard/none"},
        Words{"find", "/sdcard/none", "jpg"}, Words{"pull", "/sdcard/none"},
        Words{"storage", "--free", "/sdcard/none"}}) {
    SCOPED_TRACE(command[0]);
    EXPECT_THAT(Fail(command), AllOf(StartsWith("darokleim: cannot "), EndsWith(no_such_file)));
  }
  EXPECT_EQ(Succeed({"rm", "-f", "/sdcard/none"}), "");
}

TEST_P(PhoneFilesTest, APathOnTheDeviceIsAbsolute) {
  EXPECT_THAT(Misuse({"stat", "sdcard"}), HasSubstr("must begin with /"));
}

TEST_P(PhoneFilesTest, ARefusalOfTheDeviceIsAFailure) {
  PutOnPhone("/sdcard/a", "x");
  // A legacy rm asks whether to delete what is protected against writing, and waits for the answer.
  std::vector<Words> commands = {
      {"mkdir", "/system/b"}, {"cp", "/sdcard/a", "/system/b"}, {"mv", "/sdcard/a", "/system/b"}};
  if (!is_legacy()) commands.push_back({"rm", "/system/bin/toybox"});
  for (const Words& command : commands) {
    SCOPED_TRACE(command[0]);
    EXPECT_THAT(Fail(command), HasSubstr("darokleim: cannot "));
  }
  EXPECT_TRUE(IsThere("/sdcard/a"));
  EXPECT_TRUE(IsThere("/system/bin/toybox"));
}

TEST_P(PhoneFilesTest, RemovingChecksEverythingFirst) {
  PutOnPhone("/sdcard/a", "x");
  Shell("mkdir /sdcard/b");
  EXPECT_THAT(Fail({"rm", "/sdcard/a", "/sdcard/b"}), HasSubstr("/sdcard/b: it is a folder"));
  EXPECT_TRUE(IsThere("/sdcard/a"));
}

TEST_P(PhoneFilesTest, SeveralAnswersMayDiffer) {
  PutOnPhone("/sdcard/a", "x");
  const auto outcome = Run({"exists", "--json", "/sdcard/a", "/sdcard/b"});
  EXPECT_EQ(outcome.status, 1);
  const auto answers = ParseJson(outcome.output);
  EXPECT_EQ(answers[0]["exists"], true);
  EXPECT_EQ(answers[1]["exists"], false);
  EXPECT_EQ(Run({"exists", "-q", "/sdcard/a"}).output, "");
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneFilesTest);

}  // namespace
}  // namespace darokleim::cli

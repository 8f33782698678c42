// push, pull and screenshot, on simulated phones.
#include <signal.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/cli/phone_tool_test.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class PhoneTransferTest : public PhoneToolTest {
 protected:
  std::string Work(const std::string& name) const { return File("work/" + name); }

  std::vector<std::string> NamesIn(const std::string& folder) const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
    return names;
  }

  template <typename Condition>
  static void WaitFor(const Condition& condition) {
    for (int i = 0; i < 500 && !condition(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_TRUE(condition());
  }
};

TEST_P(PhoneTransferTest, AFileGoesThereAndBackUnderAnyName) {
  const std::string content("any\r\nbytes\0\xff", 12);
  Shell("mkdir /sdcard/test");
  for (const auto& path : AwkwardPaths("/sdcard/test")) {
    SCOPED_TRACE(path);
    const std::string name = path.substr(path.rfind('/') + 1);
    test::WriteFile(Work(name), content);
    Succeed({"push", Work(name), "/sdcard/test"});
    EXPECT_EQ(ReadFromPhone(path), content);
    fs::remove(Work(name));
    Succeed({"pull", path});
    EXPECT_EQ(test::ReadFile(Work(name)), content);
    fs::remove(Work(name));
  }
  EXPECT_TRUE(fs::is_empty(File("work")));
}

TEST_P(PhoneTransferTest, TheReportNamesWhatWasTransferred) {
  test::WriteFile(Work("a"), std::string(3000, 'x'));
  EXPECT_THAT(Succeed({"push", Work("a"), "/sdcard/b"}),
              StartsWith(Work("a") + " -> /sdcard/b  1 file, 2.9 KiB, "));
  EXPECT_EQ(Succeed({"-q", "push", Work("a"), "/sdcard/b"}), "");
  const auto json = ParseJson(Succeed({"pull", "--json", "/sdcard/b", "c"}));
  EXPECT_EQ(json[0]["source"], "/sdcard/b");
  EXPECT_EQ(json[0]["bytes"], 3000);
  EXPECT_EQ(json[0]["files"], 1);
}

TEST_P(PhoneTransferTest, AFolderComesWithEverythingInIt) {
  PutOnPhone("/sdcard/my folder/a", "1");
  PutOnPhone("/sdcard/my folder/sub \"folder\"/.b", "22");
  PutOnPhone("/sdcard/my folder/sub \"folder\"/Failure.log", "333");
  const auto json = ParseJson(Succeed({"pull", "--json", "/sdcard/my folder"}));
  EXPECT_EQ(json[0]["files"], 3);
  EXPECT_EQ(json[0]["bytes"], 6);
  EXPECT_EQ(test::ReadFile(Work("my folder/a")), "1");
  EXPECT_EQ(test::ReadFile(Work("my folder/sub \"folder\"/.b")), "22");
  EXPECT_EQ(test::ReadFile(Work("my folder/sub \"folder\"/Failure.log")), "333");
  EXPECT_THAT(NamesIn(File("work")), testing::ElementsAre("my folder"));
}

TEST_P(PhoneTransferTest, APulledFolderIsMerged) {
  PutOnPhone("/sdcard/f/a", "new");
  fs::create_directory(Work("f"));
  test::WriteFile(Work("f/a"), "old");
  test::WriteFile(Work("f/b"), "kept");
  Succeed({"pull", "/sdcard/f", "."});
  EXPECT_EQ(test::ReadFile(Work("f/a")), "new");
  EXPECT_EQ(test::ReadFile(Work("f/b")), "kept");
}

TEST_P(PhoneTransferTest, AFolderGoesWithEverythingInIt) {
  fs::create_directories(Work("my folder/sub \"folder\""));
  test::WriteFile(Work("my folder/a b"), "1");
  test::WriteFile(Work("my folder/sub \"folder\"/.c"), "22");
  for (int i = 0; i < 2; ++i) {
    const auto json = ParseJson(Succeed({"push", "--json", "my folder/", "/sdcard"}));
    EXPECT_EQ(json[0]["target"], "/sdcard/my folder");
    EXPECT_EQ(json[0]["files"], 2);
    EXPECT_EQ(ReadFromPhone("/sdcard/my folder/a b"), "1");
    EXPECT_EQ(ReadFromPhone("/sdcard/my folder/sub \"folder\"/.c"), "22");
  }
  Succeed({"push", "my folder", "/sdcard/other"});
  EXPECT_EQ(ReadFromPhone("/sdcard/other/a b"), "1");
}

TEST_P(PhoneTransferTest, SeveralNeedAFolder) {
  test::WriteFile(Work("a"), "1");
  test::WriteFile(Work("b"), "2");
  EXPECT_THAT(Fail({"push", "a", "b", "/sdcard/none"}), HasSubstr("no such folder on the device"));
  Succeed({"push", "a", "b", "/sdcard"});
  EXPECT_EQ(ReadFromPhone("/sdcard/b"), "2");
  EXPECT_THAT(Fail({"pull", "/sdcard/a", "/sdcard/b", "none"}), HasSubstr("no such folder on this computer"));
  fs::create_directory(Work("into"));
  Succeed({"pull", "/sdcard/a", "/sdcard/b", "into"});
  EXPECT_EQ(test::ReadFile(Work("into/b")), "2");
}

TEST_P(PhoneTransferTest, ASourceMustBeThere) {
  EXPECT_THAT(Fail({"push", "none", "/sdcard"}), HasSubstr("no such file or folder on this computer"));
  EXPECT_THAT(Fail({"push", "/dev/null", "/sdcard"}), HasSubstr("it is neither a file nor a folder"));
  EXPECT_THAT(Fail({"pull", "/sdcard/none"}), HasSubstr("No such file: /sdcard/none."));
  PutOnPhone("/sdcard/a", "x");
  EXPECT_THAT(Fail({"pull", "/sdcard/a", "none/a"}), HasSubstr("no such folder on this computer: "));
}

TEST_P(PhoneTransferTest, AFileAndAFolderDoNotReplaceEachOther) {
  PutOnPhone("/sdcard/a/b", "x");
  test::WriteFile(Work("b"), "1");
  fs::create_directory(Work("a"));
  fs::create_directory(Work("c"));
  fs::create_directory(Work("c/b"));
  EXPECT_THAT(Fail({"pull", "/sdcard/a/b", "c"}), HasSubstr("/c/b is a folder."));
  EXPECT_THAT(Fail({"pull", "/sdcard/a", "b"}), HasSubstr("/b is a file."));
  EXPECT_THAT(Fail({"push", "a", "/sdcard/a/b"}), HasSubstr("/sdcard/a/b on the device is a file."));
}

TEST_P(PhoneTransferTest, AnUpdateSkipsWhatIsAsNew) {
  test::WriteFile(Work("a"), "1");
  PutOnPhone("/sdcard/a", "newer");
  Shell("touch -d 2037-01-01T00:00:00Z /sdcard/a");
  EXPECT_THAT(Succeed({"push", "--update", "a", "/sdcard"}), HasSubstr("up to date"));
  EXPECT_EQ(ReadFromPhone("/sdcard/a"), "newer");
  Succeed({"push", "a", "/sdcard"});
  EXPECT_EQ(ReadFromPhone("/sdcard/a"), "1");
}

TEST_P(PhoneTransferTest, ABrokenPullKeepsTheOlderFile) {
  PutOnPhone("/sdcard/big", std::string(3 << 20, 'x'));
  test::WriteFile(Work("big"), "old");
  SwitchOn("drop-after=1M");
  const auto outcome = Run({"pull", "/sdcard/big"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(test::ReadFile(Work("big")), "old");
  EXPECT_THAT(NamesIn(File("work")), testing::ElementsAre("big"));
}

TEST_P(PhoneTransferTest, AFullStorageKeepsTheOlderFile) {
  PutOnPhone("/sdcard/a", "old");
  test::WriteFile(Work("a"), std::string(3 << 20, 'x'));
  SwitchOn("full-storage");
  EXPECT_THAT(Fail({"push", "a", "/sdcard"}), StartsWith("darokleim: cannot push "));
  EXPECT_EQ(ReadFromPhone("/sdcard/a"), "old");
  EXPECT_EQ(Shell("ls -a /sdcard/ | grep unfinished"), "");
}

TEST_P(PhoneTransferTest, ACancelledPullLeavesNothing) {
  Shell("truncate -s 1G /sdcard/big");
  test::WriteFile(Work("big"), "old");
  const auto tool = Start({"pull", "/sdcard/big"});
  WaitFor([this] { return NamesIn(File("work")).size() == 2; });
  tool->Signal(SIGINT);
  const auto outcome = tool->Finish();
  ASSERT_EQ(outcome.status, 130);
  EXPECT_EQ(outcome.errors, "darokleim: cancelled\n");
  EXPECT_EQ(test::ReadFile(Work("big")), "old");
  EXPECT_THAT(NamesIn(File("work")), testing::ElementsAre("big"));
}

TEST_P(PhoneTransferTest, ACancelledPushLeavesNothing) {
  PutOnPhone("/sdcard/big", "old");
  test::WriteFile(Work("big"), "");
  fs::resize_file(Work("big"), 1ull << 30);
  const auto tool = Start({"push", "big", "/sdcard"});
  WaitFor([this] { return Shell("ls -a /sdcard/").find("unfinished") != std::string::npos; });
  tool->Signal(SIGINT);
  const auto outcome = tool->Finish();
  ASSERT_EQ(outcome.status, 130);
  EXPECT_EQ(outcome.errors, "darokleim: cancelled\n");
  EXPECT_EQ(ReadFromPhone("/sdcard/big"), "old");
  EXPECT_EQ(Shell("ls -a /sdcard/ | grep unfinished"), "");
}

TEST_P(PhoneTransferTest, ACancelledFolderLeavesNoIncompleteFile) {
  fs::create_directory(Work("folder"));
  test::WriteFile(Work("folder/a"), "whole");
  test::WriteFile(Work("folder/b"), "");
  fs::resize_file(Work("folder/b"), 1ull << 30);
  const auto tool = Start({"push", "folder", "/sdcard"});
  WaitFor([this] { return Shell("ls /sdcard/folder 2>/dev/null").find('b') != std::string::npos; });
  tool->Signal(SIGINT);
  const auto outcome = tool->Finish();
  ASSERT_EQ(outcome.status, 130);
  EXPECT_THAT(outcome.errors, testing::EndsWith("darokleim: cancelled\n"));
  EXPECT_EQ(Run({"exists", "/sdcard/folder/b"}).output, "no  /sdcard/folder/b\n");
}

TEST_P(PhoneTransferTest, AScreenshotIsAPicture) {
  const std::string png_signature = "\x89PNG\r\n\x1a\n";
  const auto report = Succeed({"screenshot", "my screen.png"});
  EXPECT_THAT(report, StartsWith(fs::canonical(Work("my screen.png")).native() + "  "));
  EXPECT_THAT(test::ReadFile(Work("my screen.png")), StartsWith(png_signature));
  EXPECT_EQ(Shell("ls /data/local/tmp"), "");
  const auto json = ParseJson(Succeed({"screenshot", "--json"}));
  EXPECT_THAT(test::ReadFile(json["path"].asString()), StartsWith(png_signature));
  EXPECT_EQ(json["size"].asUInt64(), fs::file_size(json["path"].asString()));
  Succeed({"screenshot", "--on-device", "/sdcard/my \"screen\".png"});
  EXPECT_THAT(ReadFromPhone("/sdcard/my \"screen\".png"), StartsWith(png_signature));
  EXPECT_THAT(Fail({"screenshot", "none/a.png"}), HasSubstr("no such folder"));
}

TEST_P(PhoneTransferTest, AKilledPullLeavesNothingAfterTheNext) {
  Shell("truncate -s 1G /sdcard/big");
  PutOnPhone("/sdcard/small", "x");
  const auto tool = Start({"pull", "/sdcard/big"});
  WaitFor([this] { return NamesIn(File("work")).size() == 1; });
  tool->Signal(SIGKILL);
  tool->Finish();
  EXPECT_EQ(NamesIn(File("work")).size(), 1u);
  Succeed({"pull", "/sdcard/small"});
  EXPECT_THAT(NamesIn(File("work")), testing::ElementsAre("small"));
}

TEST_P(PhoneTransferTest, AKilledPushLeavesNothingAfterTheNext) {
  PutOnPhone("/sdcard/other", "x");
  test::WriteFile(Work("small"), "x");
  test::WriteFile(Work("big"), "");
  fs::resize_file(Work("big"), 1ull << 30);
  const auto tool = Start({"push", "big", "/sdcard"});
  WaitFor([this] { return Shell("ls -a /sdcard/").find("unfinished") != std::string::npos; });
  tool->Signal(SIGKILL);
  tool->Finish();
  Succeed({"push", "small", "/sdcard"});
  EXPECT_EQ(Shell("ls -a /sdcard/ | grep unfinished"), "");
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneTransferTest);

}  // namespace
}  // namespace darokleim::cli

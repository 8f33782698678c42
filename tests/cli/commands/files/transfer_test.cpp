// push and pull, on simulated phones.
#include <signal.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/cli/documented_json.h"
#include "tests/cli/phone_tool_test.h"
#include "tests/support/eventually.h"
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

  // Names of unfinished files of ours on the phone.
  std::string Hidden() const { return Shell("ls -a /sdcard/ | grep darokleim"); }

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

TEST_P(PhoneTransferTest, TheReportCountsWhatWasTransferred) {
  test::WriteFile(Work("a"), std::string(3000, 'x'));
  EXPECT_THAT(Succeed({"push", "a", "/sdcard/b"}), StartsWith("1 file pushed, 2.9 KiB, "));
  EXPECT_EQ(Succeed({"-q", "push", "a", "/sdcard/b"}), "");
  EXPECT_EQ(Succeed({"push", "--update", "a", "/sdcard/b"}), "0 files pushed, 1 skipped, 0 B\n");
  const auto pulled = ParseJson(Succeed({"pull", "--json", "/sdcard/b", "c"}));
  ExpectDocumented("pull", pulled);
  EXPECT_EQ(pulled["pulled"], 1);
  EXPECT_EQ(pulled["bytes"], 3000);
  const auto skipped = ParseJson(Succeed({"push", "--json", "--update", "c", "/sdcard/b"}));
  ExpectDocumented("push", skipped);
  EXPECT_EQ(skipped["skipped"], 1);
  EXPECT_EQ(skipped["bytes"], 0);
}

TEST_P(PhoneTransferTest, AFolderComesWithEverythingInIt) {
  PutOnPhone("/sdcard/my folder/a", "1");
  PutOnPhone("/sdcard/my folder/sub \"folder\"/.b", "22");
  PutOnPhone("/sdcard/my folder/sub \"folder\"/Failure.log", "333");
  Shell("mkdir '/sdcard/my folder/empty'");
  const auto json = ParseJson(Succeed({"pull", "--json", "/sdcard/my folder"}));
  EXPECT_EQ(json["pulled"], 3);
  EXPECT_EQ(json["bytes"], 6);
  EXPECT_EQ(test::ReadFile(Work("my folder/a")), "1");
  EXPECT_EQ(test::ReadFile(Work("my folder/sub \"folder\"/.b")), "22");
  EXPECT_EQ(test::ReadFile(Work("my folder/sub \"folder\"/Failure.log")), "333");
  EXPECT_TRUE(fs::is_directory(Work("my folder/empty")));
  EXPECT_THAT(NamesIn(File("work")), testing::ElementsAre("my folder"));
  Succeed({"pull", "/sdcard/my folder/.", "content"});
  EXPECT_EQ(test::ReadFile(Work("content/a")), "1");
}

TEST_P(PhoneTransferTest, StandardStreamsAreFiles) {
  const std::string content("any\r\nbytes\0\xff", 12);
  test::WriteFile(Work("in"), content);
  EXPECT_EQ(RunShell("cd " + File("work") + " && \"$TOOL\" push - '/sdcard/my file' <in").errors, "");
  EXPECT_EQ(ReadFromPhone("/sdcard/my file"), content);
  EXPECT_EQ(Succeed({"pull", "/sdcard/my file", "-"}), content);
  EXPECT_EQ(Run({"pull", "--json", "/sdcard/my file", "-"}).status, 2);
  EXPECT_THAT(Misuse({"push", "-", "/sdcard/"}), HasSubstr("TARGET must be a file"));
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
    EXPECT_EQ(ParseJson(Succeed({"push", "--json", "my folder/", "/sdcard"}))["pushed"], 2);
    EXPECT_EQ(ReadFromPhone("/sdcard/my folder/a b"), "1");
    EXPECT_EQ(ReadFromPhone("/sdcard/my folder/sub \"folder\"/.c"), "22");
  }
  Succeed({"push", "my folder", "/sdcard/other"});
  EXPECT_EQ(ReadFromPhone("/sdcard/other/a b"), "1");
  Succeed({"push", "my folder/.", "/sdcard/other/sub"});
  EXPECT_EQ(ReadFromPhone("/sdcard/other/sub/a b"), "1");
}

TEST_P(PhoneTransferTest, SeveralNeedAFolder) {
  test::WriteFile(Work("a"), "1");
  test::WriteFile(Work("b"), "2");
  EXPECT_THAT(Fail({"push", "a", "b", "/sdcard/none"}), HasSubstr("no such folder on the device"));
  Succeed({"push", "a", "b", "/sdcard"});
  EXPECT_EQ(ReadFromPhone("/sdcard/b"), "2");
  Succeed({"push", "a", "b", "/sdcard/new/"});
  EXPECT_EQ(ReadFromPhone("/sdcard/new/b"), "2");
  EXPECT_THAT(Fail({"pull", "/sdcard/a", "/sdcard/b", "none"}), HasSubstr("no such folder on this computer"));
  Succeed({"pull", "/sdcard/a", "/sdcard/b", "into/"});
  EXPECT_EQ(test::ReadFile(Work("into/b")), "2");
  EXPECT_THAT(Fail({"pull", "/sdcard/a", "/sdcard/new/a", "into"}), HasSubstr("both would become into/a."));
}

TEST_P(PhoneTransferTest, AnErrorOfOneFileLeavesTheOthers) {
  test::WriteFile(Work("b"), "2");
  const auto pushed = Run({"push", "--json", "none", "b", "/sdcard"});
  EXPECT_EQ(pushed.status, 1);
  EXPECT_THAT(pushed.errors, StartsWith("darokleim: cannot send none: No such file or directory"));
  const auto document = ParseJson(pushed.output);
  ExpectDocumented("push", document);
  EXPECT_EQ(document["pushed"], 1);
  EXPECT_EQ(document["failed"], 1);
  EXPECT_EQ(document["errors"][0]["on_host"], true);
  const auto pulled = Run({"pull", "/sdcard/none", "/sdcard/b", "."});
  EXPECT_EQ(pulled.status, 1);
  EXPECT_THAT(pulled.output, StartsWith("1 file pulled, 1 failed, "));
}

TEST_P(PhoneTransferTest, AFileAndAFolderDoNotReplaceEachOther) {
  PutOnPhone("/sdcard/a/b", "x");
  test::WriteFile(Work("b"), "1");
  fs::create_directories(Work("c/b"));
  fs::create_directory(Work("a"));
  test::WriteFile(Work("a/x"), "1");
  EXPECT_EQ(Run({"pull", "/sdcard/a/b", "c"}).status, 1);
  EXPECT_TRUE(fs::is_directory(Work("c/b")));
  EXPECT_EQ(Run({"pull", "/sdcard/a", "b"}).status, 1);
  EXPECT_EQ(test::ReadFile(Work("b")), "1");
  EXPECT_EQ(Run({"push", "a", "/sdcard/a/b"}).status, 1);
  EXPECT_EQ(ReadFromPhone("/sdcard/a/b"), "x");
}

TEST_P(PhoneTransferTest, AnUpdateSkipsWhatIsTheSame) {
  test::WriteFile(Work("a"), "1");
  Succeed({"push", "a", "/sdcard"});
  EXPECT_EQ(Succeed({"push", "--update", "a", "/sdcard"}), "0 files pushed, 1 skipped, 0 B\n");
  Shell("touch -d 2037-01-01T00:00:00Z /sdcard/a");
  EXPECT_THAT(Succeed({"push", "--update", "a", "/sdcard"}), StartsWith("1 file pushed"));
  EXPECT_EQ(Succeed({"pull", "--update", "/sdcard/a"}), "0 files pulled, 1 skipped, 0 B\n");
  test::WriteFile(Work("a"), "longer");
  EXPECT_EQ(Succeed({"push", "--no-clobber", "a", "/sdcard"}), "0 files pushed, 1 skipped, 0 B\n");
  EXPECT_EQ(ReadFromPhone("/sdcard/a"), "1");
}

TEST_P(PhoneTransferTest, ABrokenTransferGoesOnWithUpdate) {
  fs::create_directory(Work("d"));
  for (const char* name : {"a", "b", "c"})
    test::WriteFile(Work(std::string("d/") + name), std::string(1 << 20, *name));
  SwitchOn("drop-after=2500K");
  EXPECT_EQ(Run({"push", "d", "/sdcard/d"}).status, 1);
  SwitchOn("drop-after=1G");
  Succeed({"push", "--update", "d/.", "/sdcard/d"});
  for (const char* name : {"a", "b", "c"}) {
    EXPECT_EQ(ReadFromPhone(std::string("/sdcard/d/") + name), std::string(1 << 20, *name));
  }
}

TEST_P(PhoneTransferTest, OfAPhoneThatGoesIsSummedUp) {
  constexpr int kFiles = 40;
  fs::create_directory(Work("d"));
  for (int i = 0; i < kFiles; ++i) {
    test::WriteFile(Work("d/" + std::to_string(i)), "");
    fs::resize_file(Work("d/" + std::to_string(i)), 4 << 20);
  }
  Succeed({"push", "d/0", "/sdcard/d/"});
  for (const bool json : {false, true}) {
    const auto tool = Start({"push", json ? "--json" : "--progress", "--update", "d/.", "/sdcard/d"});
    const std::string before = Shell("ls -a /sdcard/d");
    WaitFor([&] { return Shell("ls -a /sdcard/d") != before; });  // the first file is on its way
    phones().Control({"TEST0001", "unplug"});
    const auto outcome = tool->Finish();
    // Whether it is the broken connection or the next one that notices.
    EXPECT_THAT(outcome.status, testing::AnyOf(1, 3));
    if (json) {
      const auto document = ParseJson(outcome.output);
      ExpectDocumented("push", document);
      EXPECT_LT(document["pushed"].asInt() + document["skipped"].asInt(), kFiles);
      EXPECT_GE(document["skipped"].asInt(), 1);
      ASSERT_EQ(document["errors"].size(), 1u);
    } else {
      EXPECT_THAT(outcome.output,
                  testing::ContainsRegex("files? pushed, [0-9]+ skipped.*--update goes on from here"));
      EXPECT_THAT(outcome.errors, StartsWith("darokleim: cannot "));
    }
    phones().Control({"TEST0001", "plug"});
    ASSERT_TRUE(test::Eventually([this] { return Shell("echo here") == "here"; }));
  }
  const auto rest = ParseJson(Succeed({"push", "--json", "--update", "d/.", "/sdcard/d"}));
  EXPECT_EQ(rest["pushed"].asInt() + rest["skipped"].asInt(), kFiles);
  const auto found = ParseJson(Succeed({"ls", "--json", "-a", "/sdcard/d"}));
  EXPECT_EQ(found["entries"].size(), static_cast<unsigned>(kFiles)) << "nothing temporary is left";
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
  const auto outcome = Run({"push", "a", "/sdcard"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, StartsWith("darokleim: cannot send a: "));
  EXPECT_EQ(ReadFromPhone("/sdcard/a"), "old");
  EXPECT_EQ(Hidden(), "");
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
  WaitFor([this] { return !Hidden().empty(); });
  tool->Signal(SIGINT);
  const auto outcome = tool->Finish();
  ASSERT_EQ(outcome.status, 130);
  EXPECT_EQ(outcome.errors, "darokleim: cancelled\n");
  EXPECT_EQ(ReadFromPhone("/sdcard/big"), "old");
  EXPECT_EQ(Hidden(), "");
}

TEST_P(PhoneTransferTest, ACancelledFolderLeavesNoIncompleteFile) {
  fs::create_directory(Work("folder"));
  test::WriteFile(Work("folder/a"), "");
  fs::resize_file(Work("folder/a"), 1ull << 30);
  const auto tool = Start({"push", "folder", "/sdcard"});
  WaitFor([this] { return !Shell("ls -a /sdcard/folder 2>/dev/null | grep darokleim").empty(); });
  const auto start = std::chrono::steady_clock::now();
  tool->Signal(SIGINT);
  const auto outcome = tool->Finish();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1500));
  ASSERT_EQ(outcome.status, 130);
  EXPECT_EQ(outcome.errors, "darokleim: cancelled\n");
  EXPECT_EQ(Shell("ls -a /sdcard/folder | grep '[a-z]'"), "");
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
  WaitFor([this] { return !Hidden().empty(); });
  tool->Signal(SIGKILL);
  tool->Finish();
  Succeed({"push", "small", "/sdcard"});
  EXPECT_EQ(Hidden(), "");
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneTransferTest);

}  // namespace
}  // namespace darokleim::cli

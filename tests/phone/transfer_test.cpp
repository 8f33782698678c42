#include <fcntl.h>
#include <sys/stat.h>

#include <ctime>
#include <filesystem>

#include "tests/phone/phone_under_test.h"

namespace darokleim::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class Transfer : public PhoneUnderTest {};

std::string ManyBytes(size_t count) {
  std::string bytes;
  bytes.reserve(count);
  uint32_t state = 12345;
  while (bytes.size() < count) {
    state = state * 1664525 + 1013904223;
    bytes += static_cast<char>(state >> 24);
  }
  return bytes;
}

TEST_P(Transfer, BringsAFileThereAndBack) {
  const std::string bytes = ManyBytes(3 * 1000 * 1000 + 7);
  WriteFile(host_folder() + "/there", bytes);
  EXPECT_THAT(Adb({"push", "--sync", host_folder() + "/there", storage_folder() + "/file"}).output,
              HasSubstr("1 file pushed"));
  EXPECT_EQ(Text("wc -c < " + storage_folder() + "/file"), "3000007\n");
  EXPECT_THAT(Adb({"pull", "-a", storage_folder() + "/file", host_folder() + "/back"}).output,
              HasSubstr("1 file pulled"));
  EXPECT_TRUE(ReadFile(host_folder() + "/back") == bytes);
}

TEST_P(Transfer, KeepsTimeAndMode) {
  const std::string host = host_folder() + "/script";
  WriteFile(host, "echo run\n");
  chmod(host.c_str(), 0750);
  const timespec times[] = {{1577934240, 0}, {1577934240, 0}};
  utimensat(AT_FDCWD, host.c_str(), times, 0);
  Adb({"push", host, phone_folder() + "/script"});
  EXPECT_EQ(Text("stat -c '%Y %a' " + phone_folder() + "/script"), "1577934240 777\n");
  Adb({"pull", "-a", phone_folder() + "/script", host_folder() + "/back"});
  struct stat status;
  ASSERT_EQ(stat((host_folder() + "/back").c_str(), &status), 0);
  EXPECT_EQ(status.st_mtime, 1577934240);
  EXPECT_EQ(status.st_mode & 0700, 0700u);
}

TEST_P(Transfer, SkipsWhatIsNotNewer) {
  WriteFile(host_folder() + "/file", "content");
  const Words push = {"push", "--sync", host_folder() + "/file", phone_folder() + "/file"};
  EXPECT_THAT(Adb(push).output, HasSubstr("1 file pushed"));
  EXPECT_THAT(Adb(push).output, HasSubstr("0 files pushed, 1 skipped"));
}

TEST_P(Transfer, MakesTheFoldersOnTheWay) {
  WriteFile(host_folder() + "/file", "content");
  Adb({"push", host_folder() + "/file", phone_folder() + "/a/b/c/file"});
  EXPECT_EQ(Text("cat " + phone_folder() + "/a/b/c/file"), "content");
}

TEST_P(Transfer, TakesWholeFoldersBothWays) {
  fs::create_directories(host_folder() + "/tree/in");
  WriteFile(host_folder() + "/tree/one", "1");
  WriteFile(host_folder() + "/tree/in/two words", "2");
  fs::create_symlink("one", host_folder() + "/tree/link");
  EXPECT_THAT(Adb({"push", host_folder() + "/tree", phone_folder()}).output, HasSubstr("3 files pushed"));
  EXPECT_EQ(Text("cat '" + phone_folder() + "/tree/in/two words' " + phone_folder() + "/tree/link"), "21");
  EXPECT_THAT(Adb({"pull", phone_folder() + "/tree", host_folder() + "/back"}).output,
              HasSubstr("files pulled"));
  EXPECT_EQ(ReadFile(host_folder() + "/back/in/two words"), "2");
}

TEST_P(Transfer, ListsAFolderInHexadecimal) {
  Shell("cd " + phone_folder() +
        " && printf 0123456789 > ten && mkdir in && touch -d 2020-01-02T03:04:05 ten in");
  const std::string listing = Adb({"ls", phone_folder()}).output;
  EXPECT_THAT(listing, testing::ContainsRegex("0000[0-9a-f]{4} 0000000a 5e0d5da5 ten\n"));
  EXPECT_THAT(listing, testing::ContainsRegex("00004[0-9a-f]{3} [0-9a-f]{8} [0-9a-f]{8} in\n"));
  EXPECT_THAT(listing, HasSubstr(" .\n"));
}

TEST_P(Transfer, ListsNothingOfAFolderThatIsNotThere) {
  EXPECT_EQ(Adb({"ls", phone_folder() + "/none"}).output, "");
}

TEST_P(Transfer, SaysThatAFileIsNotThere) {
  const Outcome outcome = Adb({"pull", phone_folder() + "/none", host_folder() + "/back"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output + outcome.errors,
              testing::AnyOf(HasSubstr("No such file or directory"), HasSubstr("does not exist")));
}

TEST_P(Transfer, SaysThatAFileMayNotBeRead) {
  Shell("cd " + phone_folder() + " && echo secret > closed && chmod 0 closed");
  const Outcome outcome = Adb({"pull", phone_folder() + "/closed", host_folder() + "/back"});
  EXPECT_THAT(outcome.output + outcome.errors, HasSubstr("open failed: Permission denied"));
}

TEST_P(Transfer, SaysThatTheSystemIsReadOnly) {
  WriteFile(host_folder() + "/file", "content");
  const Outcome outcome = Adb({"push", host_folder() + "/file", "/system/bin/nothing"});
  EXPECT_THAT(outcome.output + outcome.errors, HasSubstr("couldn't create file: Read-only file system"));
}

TEST_P(Transfer, SaysThatTheStorageIsFull) {
  REQUIRE_SIMULATED_PHONE("would have to be filled");
  WriteFile(host_folder() + "/file", std::string(1000000, 'x'));
  Adb({"push", host_folder() + "/file", storage_folder() + "/before"});
  SwitchOn("full-storage");
  for (const char* name : {"/before", "/new"}) {
    const Outcome outcome = Adb({"push", host_folder() + "/file", storage_folder() + name});
    EXPECT_THAT(outcome.output + outcome.errors, HasSubstr("No space left on device")) << name;
  }
  Control({"clear", "full-storage"});
  EXPECT_THAT(Adb({"push", host_folder() + "/file", storage_folder() + "/after"}).output,
              HasSubstr("1 file pushed"));
}

TEST_P(Transfer, FailsWhenTheConnectionBreaks) {
  REQUIRE_SIMULATED_PHONE("would have to be unplugged at the right moment");
  WriteFile(host_folder() + "/file", ManyBytes(4000000));
  Adb({"push", host_folder() + "/file", storage_folder() + "/whole"});
  SwitchOn("drop-after=1M");
  EXPECT_NE(Adb({"push", host_folder() + "/file", storage_folder() + "/half"}).status, 0);
  EXPECT_NE(Adb({"pull", storage_folder() + "/whole", host_folder() + "/back"}).status, 0);
  Control({"clear", "drop-after"});
  EXPECT_EQ(Adb({"pull", storage_folder() + "/whole", host_folder() + "/back"}).status, 0);
}

TEST_P(Transfer, TakesAsLongAsTheConnectionNeeds) {
  REQUIRE_SIMULATED_PHONE("has the speed that it has");
  WriteFile(host_folder() + "/file", ManyBytes(1500000));
  SwitchOn("bandwidth=2M");
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(Adb({"push", host_folder() + "/file", storage_folder() + "/file"}).status, 0);
  const auto taken = std::chrono::steady_clock::now() - begin;
  Control({"clear", "bandwidth"});
  EXPECT_GE(taken, std::chrono::milliseconds(600));  // 715 ms, less what is made up for
}

TEST_P(Transfer, EndsWhenThePhoneIsUnplugged) {
  REQUIRE_SIMULATED_PHONE("would have to be unplugged");
  const auto reader = StartAdb({"exec-out", "cat /dev/zero"});
  Control({"unplug"});
  reader->Finish();
  EXPECT_THAT(Shell("true").errors, HasSubstr("device '" + serial() + "' not found"));
  Control({"plug"});
  EXPECT_EQ(Text("echo back"), "back\n");
}

INSTANTIATE_FOR_PHONES(Transfer);

}  // namespace
}  // namespace darokleim::test

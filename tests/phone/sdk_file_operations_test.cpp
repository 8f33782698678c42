#include "tests/phone/sdk_on_phone.h"

namespace darokleim::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Sdk : public SdkOnPhone {};

TEST_P(Sdk, WorksOnFilesWithSpacesInTheirNames) {
  WriteFile(OnHost("my photo.jpg"), "1234567");
  const std::string file = OnPhone("my photo.jpg");
  const std::string copy = OnPhone("a copy.jpg");
  const std::string moved = OnPhone("it is moved.jpg");
  EXPECT_EQ(AdbPushFile(phone(), OnHost("my photo.jpg").c_str(), file.c_str(), cancel_), kOk);
  bool exists = false;
  EXPECT_EQ(AdbCheckFileExisted(phone(), file.c_str(), &exists, cancel_), kOk);
  EXPECT_TRUE(exists);
  EXPECT_EQ(AdbCopyFile(phone(), file.c_str(), copy.c_str(), cancel_), kOk);
  EXPECT_EQ(AdbRenameFile(phone(), copy.c_str(), moved.c_str(), cancel_), kOk);
  unsigned long long number = 0;
  EXPECT_EQ(AdbGetFileSize(phone(), moved.c_str(), &number, cancel_), kOk);
  EXPECT_EQ(number, 7u);
  EXPECT_EQ(AdbGetFileCreateTime(phone(), moved.c_str(), &number, cancel_), kOk);
  EXPECT_GT(number, 1000000000u);
  EXPECT_EQ(AdbPullFile(phone(), moved.c_str(), OnHost("back").c_str(), cancel_), kOk);
  EXPECT_EQ(ReadFile(OnHost("back")), "1234567");
  EXPECT_EQ(AdbRemoveFile(phone(), moved.c_str(), cancel_), kOk);
  exists = true;
  EXPECT_EQ(AdbCheckFileExisted(phone(), moved.c_str(), &exists, cancel_), kOk);
  EXPECT_FALSE(exists);
  EXPECT_EQ(AdbCreateDir(phone(), OnPhone("new folder/in").c_str(), cancel_), kOk);
  EXPECT_EQ(Text("ls -d '" + OnPhone("new folder/in") + "' >/dev/null && echo there"), "there\n");
  Shell("touch " + phone_folder() + "/file");
  EXPECT_EQ(AdbChmodFile(phone(), (phone_folder() + "/file").c_str(), "750", cancel_), kOk);
  EXPECT_EQ(Text("stat -c %a " + phone_folder() + "/file"), "750\n");
}

TEST_P(Sdk, NamesWhatIsWrongWithAFile) {
  // Of an old phone the client prints "does not exist", which is not one of the known texts.
  EXPECT_EQ(AdbPullFile(phone(), OnPhone("none").c_str(), OnHost("back").c_str(), cancel_),
            is_legacy() ? 1001 : 25);
  EXPECT_EQ(AdbCopyFile(phone(), OnPhone("none").c_str(), OnPhone("copy").c_str(), cancel_), 25);
  REQUIRE_SIMULATED_PHONE("would have to be filled");
  WriteFile(OnHost("file"), std::string(200000, 'x'));
  AdbPushFile(phone(), OnHost("file").c_str(), OnPhone("file").c_str(), cancel_);
  SwitchOn("full-storage");
  EXPECT_EQ(AdbPushFile(phone(), OnHost("file").c_str(), OnPhone("more").c_str(), cancel_), 47);
  EXPECT_EQ(AdbCopyFile(phone(), OnPhone("file").c_str(), OnPhone("copy").c_str(), cancel_), 47);
}

TEST_P(Sdk, ReadsTheTimeOfAFileWithoutStat) {
  REQUIRE_SIMULATED_PHONE("has its stat");
  Shell("touch -d 2020-01-02T03:04:05 " + OnPhone("file"));
  SwitchOn("no-stat");
  unsigned long long time = 0;
  EXPECT_EQ(AdbGetFileCreateTime(phone(), OnPhone("file").c_str(), &time, cancel_), kOk);
  EXPECT_EQ(time, 1577934245u);
}

TEST_P(Sdk, ListsFolders) {
  Shell("cd " + storage_folder() +
        " && mkdir -p in && printf 123 > a.jpg && printf 1 > in/b.JPG && printf 1 > 'c d.txt'");
  EXPECT_EQ(AdbGetDirFiles(phone(), storage_folder().c_str(), &text_, &length_, 1, 1, cancel_), kOk);
  std::string json = Taken(&text_, length_);
  EXPECT_THAT(json, HasSubstr("/a.jpg"));
  EXPECT_THAT(json, HasSubstr("/in/b.JPG"));
  EXPECT_THAT(json, HasSubstr("/c d.txt"));
  EXPECT_EQ(AdbGetDirFilesEx(phone(), storage_folder().c_str(), &text_, &length_, 1, 1, cancel_), kOk);
  EXPECT_THAT(Taken(&text_, length_), HasSubstr("/in/b.JPG"));
  EXPECT_EQ(AdbGetDirFilesAndDirs(phone(), storage_folder().c_str(), &text_, &length_, 1, 1, cancel_), kOk);
  EXPECT_THAT(Taken(&text_, length_), HasSubstr("c d.txt"));
  long long size = 0;
  EXPECT_EQ(AdbGetDirSize(phone(), storage_folder().c_str(), &size, cancel_), kOk);
  EXPECT_GT(size, 0);
}

TEST_P(Sdk, FindsFilesBySuffixWithAndWithoutFind) {
  Shell("cd " + storage_folder() + " && mkdir -p in && touch a.jpg in/b.JPG c.txt");
  EXPECT_EQ(AdbGetFilesBySuffix(phone(), storage_folder().c_str(), "jpg;png", &text_, &length_, cancel_),
            kOk);
  std::string json = Taken(&text_, length_);
  EXPECT_THAT(json, HasSubstr("/a.jpg"));
  EXPECT_THAT(json, HasSubstr("/in/b.JPG"));
  EXPECT_THAT(json, Not(HasSubstr("c.txt")));
  REQUIRE_SIMULATED_PHONE("has its find");
  SwitchOn("no-find");
  EXPECT_EQ(AdbGetFilesBySuffix(phone(), storage_folder().c_str(), "jpg", &text_, &length_, cancel_), kOk);
  EXPECT_THAT(Taken(&text_, length_), HasSubstr("/in/b.JPG"));
}

TEST_P(Sdk, FindsTheStorage) {
  EXPECT_EQ(AdbGetFirstSDCardPath(phone(), buffer_, sizeof(buffer_), cancel_), kOk);
  EXPECT_STREQ(buffer_, "/sdcard");
  unsigned long long free_bytes = 0;
  EXPECT_EQ(AdbGetStorageFreeSpace(phone(), "/sdcard", &free_bytes, cancel_), kOk);
  EXPECT_GT(free_bytes, 0u);
  REQUIRE_SIMULATED_PHONE("may have no card");
  EXPECT_EQ(AdbSearchSDCardPath(phone(), &text_, &length_, cancel_), kOk);
  const std::string paths = Taken(&text_, length_);
  EXPECT_THAT(paths, HasSubstr("/storage/1A2B-3C4D\""));
  EXPECT_THAT(paths, HasSubstr("/storage/emulated/0\""));
  EXPECT_THAT(paths, Not(HasSubstr("self")));
  EXPECT_EQ(AdbSearchExternalSDCardPath(phone(), &text_, &length_, cancel_), kOk);
  EXPECT_EQ(Taken(&text_, length_), is_legacy() ? "/storage/1A2B-3C4D" : "");
  SwitchOn("free-space=100M");
  EXPECT_EQ(AdbGetStorageFreeSpace(phone(), "/sdcard", &free_bytes, cancel_), kOk);
  EXPECT_EQ(free_bytes, 100u * 1024 * 1024);
}

TEST_P(Sdk, TakesPictures) {
  EXPECT_EQ(AdbScreencapToPC(phone(), OnHost("screen.png").c_str(), cancel_), kOk);
  EXPECT_THAT(ReadFile(OnHost("screen.png")), StartsWith("\x89PNG"));
  EXPECT_EQ(AdbScreencapToDevice(phone(), OnPhone("the screen.png").c_str(), cancel_), kOk);
  EXPECT_EQ(Text("head -c 4 '" + OnPhone("the screen.png") + "' | tail -c 3"), "PNG");
}

INSTANTIATE_FOR_PHONES(Sdk);

}  // namespace
}  // namespace darokleim::test

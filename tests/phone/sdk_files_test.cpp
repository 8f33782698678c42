// Files, folders and storage of old and new phones, in each mode of the channel.
#include <darokleim.h>
#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <thread>

#include "tests/phone/each_phone.h"
#include "tests/phone/phone_under_test.h"
#include "tests/support/json.h"

namespace darokleim::test {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;

constexpr char kTree[] = "/data/local/tmp/tree";
constexpr time_t kTouched = 1577934245;  // 2020-01-02 03:04:05 UTC
using Lister = int (*)(const char*, const char*, char**, int*, int, int, const bool*);

// A document that the library handed out, given back.
class Taken {
 public:
  ~Taken() { AdbFreeResource(&text_); }
  char** text() { return &text_; }
  int* length() { return &length_; }
  bool is_there() const { return text_ != nullptr; }
  Json::Value Value() const {
    const Json::Value value = ParseJson({text_, static_cast<size_t>(length_)});
    EXPECT_FALSE(value.isNull()) << text_;
    return value;
  }

 private:
  char* text_ = nullptr;
  int length_ = 0;
};

class Files : public EachPhone {
 protected:
  fs::path Seen(const std::string& phone_path) const { return phone_files().string() + phone_path; }
  fs::path InTree(const std::string& entry) const { return Seen(kTree) / entry; }
  static std::string OnPhone(const std::string& entry) { return kTree + ("/" + entry); }

  void Put(const std::string& entry, const std::string& content) const {
    const fs::path file = InTree(entry);
    fs::create_directories(file.parent_path());
    WriteFile(file.string(), content);
    fs::last_write_time(file, fs::file_time_type::clock::now());
    const std::string touched = "@" + std::to_string(kTouched);
    RunProgram({"touch", "-d", touched, file.string()}, {});
  }

  // Spaces, characters of all lengths, a long name, an empty folder, a link and a folder that may not be read.
  std::set<std::string> MakeTree() const {
    const std::set<std::string> files = {"a b.txt", "相机/照片 1.jpg", "😀.txt", std::string(250, 'n'),
                                         "相机/deep/er/.hidden"};
    for (const std::string& file : files) Put(file, file);
    fs::create_directory(InTree("empty"));
    fs::create_directory_symlink("a b.txt", InTree("link"));
    Put("locked/inside", "");
    fs::permissions(InTree("locked"), fs::perms::none);
    return files;
  }
  void TearDown() override {
    std::error_code error;
    fs::permissions(InTree("locked"), fs::perms::all, error);
    EachPhone::TearDown();
  }

  static std::vector<std::string> PathsOf(const Json::Value& list) {
    std::vector<std::string> paths;
    for (const Json::Value& file : list["files"]) paths.push_back(file["file"].asString());
    EXPECT_EQ(list["file_count"].asInt(), static_cast<int>(paths.size()));
    return paths;
  }

  static std::vector<std::string> OnPhone(const std::set<std::string>& entries) {
    std::vector<std::string> paths;
    for (const std::string& entry : entries) paths.push_back(OnPhone(entry));
    return paths;
  }

  std::vector<std::string> FindBySuffix(const char* suffixes) const {
    Taken json;
    EXPECT_EQ(AdbGetFilesBySuffix(serial(), kTree, suffixes, json.text(), json.length(), nullptr), 0);
    return json.is_there() ? PathsOf(json.Value()) : std::vector<std::string>();
  }
};

TEST_P(Files, OfATreeAsLsListsThem) {
  const std::set<std::string> files = MakeTree();
  Taken json;
  ASSERT_EQ(AdbGetDirFiles(serial(), kTree, json.text(), json.length(), 1, 1, nullptr), 0);
  if (!GetParam().ends_in_crlf()) {
    EXPECT_TRUE(json.Value()["files"].isNull()) << "no line of a modern phone ends in CR LF";
    return;
  }
  const Json::Value list = json.Value();
  EXPECT_THAT(PathsOf(list), UnorderedElementsAreArray(OnPhone(files)));
  for (const Json::Value& file : list["files"]) {
    EXPECT_EQ(file["size"].asUInt64(), file["file"].asString().size() - sizeof kTree)
        << file.toStyledString();
    EXPECT_EQ(file["time"].asString(), "2020-01-02 03:04");
    EXPECT_FALSE(file.isMember("utc_timestamp"));
  }
}

TEST_P(Files, OfATreeAsAdbListsThem) {
  std::set<std::string> files = MakeTree();
  files.insert("link");
  Taken json;
  ASSERT_EQ(AdbGetDirFilesEx(serial(), kTree, json.text(), json.length(), 0, 0, nullptr), 0);
  const Json::Value list = json.Value();
  EXPECT_THAT(PathsOf(list), UnorderedElementsAreArray(OnPhone(files)));
  for (const Json::Value& file : list["files"]) {
    if (file["file"].asString() == OnPhone("link")) continue;
    EXPECT_EQ(file["size"].asUInt64(), file["file"].asString().size() - sizeof kTree)
        << file.toStyledString();
    EXPECT_EQ(file["utc_timestamp"].asInt64(), kTouched);
  }
}

TEST_P(Files, InFolders) {
  MakeTree();
  Taken json;
  ASSERT_EQ(AdbGetDirFilesAndDirs(serial(), kTree, json.text(), json.length(), 0, 0, nullptr), 0);
  const Json::Value tree = json.Value();
  EXPECT_EQ(tree["Name"].asString(), kTree);
  EXPECT_EQ(tree["File"].size(), 4u);
  ASSERT_EQ(tree["Dir"].size(), 1u) << "neither the empty nor the locked one";
  const Json::Value& camera = tree["Dir"][0];
  EXPECT_EQ(camera["Name"].asString(), OnPhone("相机"));
  EXPECT_EQ(camera["File"][0]["Name"].asString(), OnPhone("相机/照片 1.jpg"));
  EXPECT_EQ(camera["Dir"][0]["Dir"][0]["File"][0]["Name"].asString(), OnPhone("相机/deep/er/.hidden"));
}

TEST_P(Files, OfNoFolder) {
  for (const Lister lister : {AdbGetDirFilesEx, AdbGetDirFilesAndDirs}) {
    Taken json;
    EXPECT_EQ(lister(serial(), OnPhone("none").c_str(), json.text(), json.length(), 0, 0, nullptr), 0);
    EXPECT_TRUE(json.is_there());
  }
  Taken json;
  EXPECT_EQ(AdbGetDirFiles(serial(), OnPhone("none").c_str(), json.text(), json.length(), 0, 0, nullptr), 25);
  EXPECT_FALSE(json.is_there());
}

TEST_P(Files, BySuffixWithAndWithoutFind) {
  for (const char* file : {"a.jpg", "in/b.JPG", "in/c.png", "d.jpgx", "ejpg", "in/f.jpg.txt"}) Put(file, "x");
  for (const bool with_find : {true, false}) {
    if (!with_find) Control({"fault", "no-find"});
    EXPECT_THAT(FindBySuffix("jpg"), UnorderedElementsAre(OnPhone("a.jpg"), OnPhone("in/b.JPG")));
    EXPECT_THAT(FindBySuffix("jpg;png"),
                UnorderedElementsAre(OnPhone("a.jpg"), OnPhone("in/b.JPG"), OnPhone("in/c.png")));
    EXPECT_THAT(FindBySuffix("gif"), IsEmpty());
  }
}

TEST_P(Files, FoundInSpiteOfAFolderThatMayNotBeSearched) {
  MakeTree();
  EXPECT_THAT(FindBySuffix("jpg"), UnorderedElementsAre(OnPhone("相机/照片 1.jpg")));
  Taken json;
  EXPECT_EQ(AdbGetFilesBySuffix(serial(), kTree, "gif", json.text(), json.length(), nullptr), 29);
  EXPECT_TRUE(json.Value()["files"].isNull());
}

TEST_P(Files, MeasuredWithBusyboxInstalledOnTheWay) {
  Put("one", std::string(10'000, 'x'));
  const fs::path busybox = Seen("/data/local/tmp/busybox");
  ASSERT_FALSE(fs::exists(busybox));
  long long size = 0;
  EXPECT_EQ(AdbGetDirSize(serial(), kTree, &size, nullptr), 0);
  EXPECT_GE(size, 10);
  EXPECT_LE(size, 40);
  EXPECT_EQ(fs::status(busybox).permissions() & static_cast<fs::perms>(0111), static_cast<fs::perms>(0111));
  EXPECT_EQ(AdbGetDirSize(serial(), OnPhone("none").c_str(), &size, nullptr), 25);
  EXPECT_EQ(size, 0);
}

TEST_P(Files, OfASize) {
  Put("1234", std::string(1234, 'x'));
  unsigned long long size = 77;
  EXPECT_EQ(AdbGetFileSize(serial(), OnPhone("1234").c_str(), &size, nullptr),
            GetParam().ends_in_crlf() ? 0 : 1);
  EXPECT_EQ(size, GetParam().ends_in_crlf() ? 1234u : 0u);
  EXPECT_EQ(AdbGetFileSize(serial(), OnPhone("none").c_str(), &size, nullptr), 25);
}

TEST_P(Files, OfATime) {
  Put("file", "");
  unsigned long long time = 0;
  EXPECT_EQ(AdbGetFileCreateTime(serial(), OnPhone("file").c_str(), &time, nullptr), 0);
  EXPECT_EQ(time, static_cast<unsigned long long>(kTouched));
  Control({"fault", "no-stat"});
  time = 0;
  EXPECT_EQ(AdbGetFileCreateTime(serial(), OnPhone("file").c_str(), &time, nullptr), 0)
      << "from adb's listing";
  EXPECT_EQ(time, static_cast<unsigned long long>(kTouched));
}

TEST_P(Files, LookedUpInAdbsListing) {
  Put("a file", "");
  Put("file", "");
  bool there = false;
  EXPECT_EQ(AdbCheckFileExistedUsingFolderContent(serial(), OnPhone("a file").c_str(), &there, nullptr), 0);
  EXPECT_TRUE(there);
  there = false;
  EXPECT_EQ(AdbCheckFileExistedUsingFolderContent(serial(), OnPhone("no file").c_str(), &there, nullptr), 0);
  EXPECT_FALSE(there);
  EXPECT_EQ(AdbCheckFileExistedUsingFolderContent(serial(), "/data", &there, nullptr), 0);
  unsigned long long time = 0;
  EXPECT_EQ(AdbGetFileCreateTimeFromLs(serial(), OnPhone("file").c_str(), &time, nullptr), 0);
  EXPECT_EQ(time, static_cast<unsigned long long>(kTouched));
  time = 7;
  EXPECT_EQ(AdbGetFileCreateTimeFromLs(serial(), OnPhone("none").c_str(), &time, nullptr), 0);
  EXPECT_EQ(time, 7u);
}

TEST_P(Files, OnTheVolumesOfThePhone) {
  const std::string card = "/storage/1A2B-3C4D";
  const std::string kept = GetParam().legacy() && !GetParam().assist() ? "\r" : "";
  Taken volumes;
  ASSERT_EQ(AdbSearchSDCardPath(serial(), volumes.text(), volumes.length(), nullptr), 0);
  std::set<std::string> paths;
  for (const Json::Value& path : volumes.Value()) paths.insert(path.asString());
  EXPECT_THAT(paths, UnorderedElementsAre("/storage/emulated/0", card + kept));
  Taken path;
  ASSERT_EQ(AdbSearchExternalSDCardPath(serial(), path.text(), path.length(), nullptr), 0);
  EXPECT_EQ(*path.text(), GetParam().legacy() ? card + kept : "") << "by the group of older phones";
}

TEST_P(Files, OfAPhoneThatVanishesBetweenTwoCommands) {
  for (int i = 0; i < 300; ++i) Put("folder" + std::to_string(i) + "/file", "");
  std::thread cable([this] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    Control({"unplug"});
  });
  Taken json;
  int code = 0;
  while (code == 0) {
    AdbFreeResource(json.text());
    code = AdbGetDirFilesEx(serial(), kTree, json.text(), json.length(), 0, 0, nullptr);
  }
  cable.join();
  if (GetParam().mode == "direct") {  // which says so when it happens in the middle of an answer
    EXPECT_THAT(code, testing::AnyOf(1001, int{ADB_CHANNEL_CONNECTION_BROKEN}));
  } else {
    EXPECT_EQ(code, 1001);
  }
  EXPECT_FALSE(json.is_there());
  long long size = 77;
  EXPECT_EQ(AdbGetDirSize(serial(), kTree, &size, nullptr), 24);
  EXPECT_EQ(size, 0);
  char storage[16] = {};
  EXPECT_EQ(AdbGetFirstSDCardPath(serial(), storage, sizeof storage, nullptr), 24);
}

INSTANTIATE_FOR_EACH_PHONE(Files);

}  // namespace
}  // namespace darokleim::test

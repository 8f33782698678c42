#include "src/filesystem/file_list_json.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <list>
#include <string>

#include "tests/support/plain_file_list_json.h"
#include "tests/unit/filesystem/own_directory.h"
#include "tests/unit/filesystem/random_file_list.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;
using Files = std::list<FileInfo>;

constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();

class FileListJsonTest : public ::testing::Test {
 protected:
  static std::string Flat(const Files& files, bool with_size = true) {
    return serialization_file_list(&files, with_size);
  }
  static std::string Tree(const Files& files, const std::string& root, bool with_size = true) {
    return serialization_file_list_keep_folder_structer(&files, root, with_size);
  }
  static Files Paths(std::initializer_list<const char*> paths) {
    Files files;
    for (const char* path : paths) files.push_back({0, 0, path, "", 0});
    return files;
  }
  static void ExpectSameAsPlain(const Files& files, const std::string& root) {
    for (const bool with_size : {true, false}) {
      ASSERT_EQ(Flat(files, with_size), PlainFlatList(files, with_size));
      ASSERT_EQ(Tree(files, root, with_size), PlainTree(files, root, with_size)) << root;
    }
  }

  const OwnDirectory directory_;
};

TEST_F(FileListJsonTest, NoFilesAreNull) {
  const char* expected =
      "{\n"
      "   \"file_count\" : 0,\n"
      "   \"files\" : null\n"
      "}";
  EXPECT_EQ(Flat({}), expected);
  EXPECT_EQ(Flat({}, false), expected);
}

TEST_F(FileListJsonTest, AFlatList) {
  const Files files = {{10, 0x81B0, "/sdcard/a.txt", "2019-12-31 16:40:48", 1577810448},
                       {0, 0, "/sdcard/b", "", 0},
                       {1, 0, "", "now", 0}};
  EXPECT_EQ(Flat(files),
            "{\n"
            "   \"file_count\" : 3,\n"
            "   \"files\" : \n"
            "   [\n"
            "      {\n"
            "         \"file\" : \"/sdcard/a.txt\",\n"
            "         \"size\" : 10,\n"
            "         \"time\" : \"2019-12-31 16:40:48\",\n"
            "         \"utc_timestamp\" : 1577810448\n"
            "      },\n"
            "      {\n"
            "         \"file\" : \"/sdcard/b\",\n"
            "         \"size\" : 0\n"
            "      },\n"
            "      {\n"
            "         \"file\" : \"\",\n"
            "         \"size\" : 1,\n"
            "         \"time\" : \"now\"\n"
            "      }\n"
            "   ]\n"
            "}");
}

TEST_F(FileListJsonTest, SizesAreLeftOutOnRequest) {
  const Files files = {{10, 0, "/sdcard/a/b", "", 0}};
  EXPECT_EQ(Flat(files, false),
            "{\n"
            "   \"file_count\" : 1,\n"
            "   \"files\" : \n"
            "   [\n"
            "      {\n"
            "         \"file\" : \"/sdcard/a/b\"\n"
            "      }\n"
            "   ]\n"
            "}");
  EXPECT_EQ(Tree(files, "/sdcard", false).find("Size"), std::string::npos);
}

TEST_F(FileListJsonTest, ATree) {
  const Files files = {{7, 0, "/sdcard/a/b/x.jpg", "2020-01-02 03:04:05", 1577934245},
                       {8, 0, "/sdcard/a/y.jpg", "", 1577934245}};
  EXPECT_EQ(Tree(files, "/sdcard"),
            "{\n"
            "   \"Dir\" : \n"
            "   [\n"
            "      {\n"
            "         \"Dir\" : \n"
            "         [\n"
            "            {\n"
            "               \"File\" : \n"
            "               [\n"
            "                  {\n"
            "                     \"Name\" : \"/sdcard/a/b/x.jpg\",\n"
            "                     \"Size\" : 7,\n"
            "                     \"Time\" : \"2020-01-02 03:04:05\"\n"
            "                  }\n"
            "               ],\n"
            "               \"Name\" : \"/sdcard/a/b\"\n"
            "            }\n"
            "         ],\n"
            "         \"File\" : \n"
            "         [\n"
            "            {\n"
            "               \"Name\" : \"/sdcard/a/y.jpg\",\n"
            "               \"Size\" : 8\n"
            "            }\n"
            "         ],\n"
            "         \"Name\" : \"/sdcard/a\"\n"
            "      }\n"
            "   ],\n"
            "   \"Name\" : \"/sdcard\"\n"
            "}");
}

TEST_F(FileListJsonTest, ATreeWithoutFilesIsItsRoot) {
  EXPECT_EQ(Tree({}, "/sdcard"), "{\n   \"Name\" : \"/sdcard\"\n}");
  EXPECT_EQ(Tree({}, ""), "{\n   \"Name\" : \"\"\n}");
}

// The folders are in the order of their first file in the list.
TEST_F(FileListJsonTest, AFolderListedAgainGoesOnWhereItWas) {
  const Files files = Paths({"/r/b/1", "/r/a/2", "/r/b/3", "/r/4", "/r/b/c/5", "/r/a/6"});
  std::string names;
  const std::string tree = Tree(files, "/r");
  constexpr char kName[] = "\"Name\" : \"";
  for (std::size_t at = tree.find(kName); at != std::string::npos; at = tree.find(kName, at + 1)) {
    const std::size_t begin = at + sizeof kName - 1;
    names += tree.substr(begin, tree.find('"', begin) - begin) + " ";
  }
  EXPECT_EQ(names, "/r/b/c/5 /r/b/c /r/b/1 /r/b/3 /r/b /r/a/2 /r/a/6 /r/a /r/4 /r ");
  ExpectSameAsPlain(files, "/r");
}

TEST_F(FileListJsonTest, ARootThatEndsInASlash) {
  const Files files = Paths({"/sdcard//x", "/sdcard//a/y", "/sdcard//a//z", "/sdcard///w"});
  const std::string tree = Tree(files, "/sdcard/");
  EXPECT_NE(tree.find("\"Name\" : \"/sdcard//a\""), std::string::npos);
  ExpectSameAsPlain(files, "/sdcard/");
}

// Each slash separates two folders, one of which may have no name.
TEST_F(FileListJsonTest, RunsOfSlashes) {
  const Files files = Paths({"/r//x", "/r/a//x", "/r///", "/r/a/", "/r//"});
  const std::string tree = Tree(files, "/r");
  for (const char* folder : {"/r/", "/r/a", "/r/a/", "/r//"}) {
    EXPECT_NE(tree.find("\"Name\" : \""s + folder + "\""), std::string::npos) << folder;
  }
  ExpectSameAsPlain(files, "/r");
}

TEST_F(FileListJsonTest, PathsThatDoNotBeginWithTheRoot) {
  ExpectSameAsPlain(
      Paths({"", "/", "/s", "/sdcard", "/sdcard/", "/other/folder/x", "elsewhere/x", "/sdcardX/y"}),
      "/sdcard");
}

TEST_F(FileListJsonTest, NumbersUpToTheLargest) {
  Files files;
  for (const std::uint64_t number :
       {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{1} << 31, std::uint64_t{1} << 32,
        std::uint64_t{1} << 53, std::uint64_t{1} << 63, kLargest}) {
    files.push_back({number, 0, "/r/x", "", number});
  }
  EXPECT_NE(Flat(files).find("\"size\" : 18446744073709551615,"), std::string::npos);
  EXPECT_NE(Flat(files).find("\"utc_timestamp\" : 18446744073709551615\n"), std::string::npos);
  ExpectSameAsPlain(files, "/r");
}

TEST_F(FileListJsonTest, NamesOfAnyBytes) {
  Files files;
  for (int first = 0; first < 256; ++first) {
    const std::string byte(1, static_cast<char>(first));
    files.push_back({0, 0, "/r/" + byte, byte, 0});
    files.push_back({0, 0, "/r/a" + byte + "\0b\xbf/c"s + byte, byte + "\xbf\xbf\xbf", 0});
  }
  files.push_back({0, 0, "/r/\xE7\x9B\xB8\xE6\x9C\xBA/\xF0\x9F\x98\x80.jpg", "", 0});
  EXPECT_NE(Flat(files).find("\\u76f8\\u673a/\\ud83d\\ude00.jpg"), std::string::npos);
  EXPECT_NE(Flat(files).find("\"/r/\\u0000\""), std::string::npos);
  ExpectSameAsPlain(files, "/r");
}

TEST_F(FileListJsonTest, AnythingIsWrittenAsJsonCppWritesIt) {
  // Without thousands of side files, which would be slow.
  std::filesystem::create_directory(directory_.side_file());
  for (unsigned seed = 0; seed < 3000 && !HasFatalFailure(); ++seed) {
    SCOPED_TRACE(seed);
    RandomFileList random(seed);
    const std::string root = random.Root();
    ExpectSameAsPlain(random.Files(root), root);
  }
}

TEST_F(FileListJsonTest, EveryCallLeavesTheSideFile) {
  const Files files = Paths({"/r/a/x", "/r/y"});
  const std::string flat = Flat(files);
  EXPECT_EQ(directory_.SideFileContent(), flat);
  const std::string tree = Tree(files, "/r");
  EXPECT_EQ(directory_.SideFileContent(), tree);
  const std::string empty = Flat({});
  EXPECT_EQ(directory_.SideFileContent(), empty);
}

TEST_F(FileListJsonTest, WithoutASideFileTheDocumentIsTheSame) {
  const Files files = Paths({"/r/a/x", "/r/y"});
  std::filesystem::create_directory(directory_.side_file());
  EXPECT_EQ(Flat(files), PlainFlatList(files, true));
  EXPECT_EQ(Tree(files, "/r"), PlainTree(files, "/r", true));
}

// Runs in a thread with a stack that holds a few dozen calls of a careful size.
void RunOnSmallStack(std::function<void()> function) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  constexpr std::size_t kStack = 256 * 1024;
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStack), 0);
  pthread_t thread;
  const auto run = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &function), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

TEST_F(FileListJsonTest, ADeepTreeIsWrittenAsJsonCppWritesIt) {
  std::string path = "/r";
  Files files;
  for (int depth = 0; depth < 300; ++depth) files.push_back({0, 0, (path += "/d") + "/x", "", 0});
  ExpectSameAsPlain(files, "/r");
}

TEST_F(FileListJsonTest, FiveThousandFoldersInEachOtherNeedNoStack) {
  // Half a gigabyte of indentation: without a side file.
  std::filesystem::create_directory(directory_.side_file());
  constexpr int kDepth = 5000;
  std::string path = "/r";
  for (int depth = 0; depth < kDepth; ++depth) path += "/d";
  const Files files = {{1, 0, path + "/x", "", 0}, {2, 0, "/r/y", "", 0}};
  std::string tree;
  RunOnSmallStack([&] { tree = Tree(files, "/r"); });
  std::size_t folders = 0;
  for (std::size_t at = tree.find("\"Dir\""); at != std::string::npos; at = tree.find("\"Dir\"", at + 1)) {
    ++folders;
  }
  EXPECT_EQ(folders, kDepth);
  EXPECT_NE(tree.find("\n" + std::string(6 * kDepth + 9, ' ') + "\"Name\" : \"" + path + "/x\",\n"),
            std::string::npos);
  const std::string end = "\n   \"Name\" : \"/r\"\n}";
  EXPECT_EQ(tree.substr(tree.size() - end.size()), end);
}

}  // namespace
}  // namespace darokleim::test

// Files of the phone: looked at, listed, read and changed.
#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "tests/client/client_on_phone.h"

namespace darokleim::test {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

class Files : public ClientOnPhone {
 protected:
  std::set<std::string> NamesIn(const std::string& folder) const {
    std::set<std::string> names;
    for (const dk::Entry& entry : phone().list(folder).value()) names.insert(entry.name);
    return names;
  }
};
DAROKLEIM_ON_BOTH_GENERATIONS(Files);

const std::string kAwkward[] = {"my photo.jpg",
                                "it's",
                                "\"quoted\"",
                                "$HOME",
                                "a;b&c",
                                "back\\slash",
                                "(1) [2] {3}",
                                "line\nbreak",
                                "tab\there",
                                "-rf",
                                "*",
                                "\xc3\xa4\xe6\xbc\xa2",
                                "\xff\xfe",
                                "device not found.jpg"};

TEST_P(Files, AFolderIsListedWithItsFoldersLinksAndEmptyOnes) {
  Shell(
      "mkdir -p /sdcard/t/empty /sdcard/t/full; echo x > /sdcard/t/full/x; echo hello > /sdcard/t/file; "
      "ln -s file /sdcard/t/link");
  EXPECT_EQ(NamesIn("/sdcard/t"), (std::set<std::string>{"empty", "full", "file", "link"}));
  for (const dk::Entry& entry : phone().list("/sdcard/t").value()) {
    EXPECT_EQ(entry.path, "/sdcard/t/" + entry.name);
    if (entry.name == "file") {
      EXPECT_EQ(entry.type, DK_FILE);
      EXPECT_EQ(entry.size, 6U);
    } else if (entry.name == "link") {
      EXPECT_EQ(entry.type, DK_LINK);
    } else {
      EXPECT_EQ(entry.type, DK_DIRECTORY);
    }
  }
  EXPECT_TRUE(NamesIn("/sdcard/t/empty").empty());
}

TEST_P(Files, MissingUnreadableAndNotAFolderDiffer) {
  Shell("mkdir -p /data/local/tmp/closed; chmod 0 /data/local/tmp/closed; echo x > /data/local/tmp/file");
  EXPECT_EQ(phone().list("/sdcard/nowhere").code(), DK_NOT_FOUND);
  EXPECT_EQ(phone().list("/data/local/tmp/file").code(), DK_NOT_A_DIRECTORY);
  EXPECT_EQ(phone().list("relative").code(), DK_INVALID_ARGUMENT);
  EXPECT_EQ(phone().stat("/sdcard/nowhere").code(), DK_NOT_FOUND);
  EXPECT_EQ(phone().stat("/sdcard/nowhere/below").code(), DK_NOT_FOUND);
}

TEST_P(Files, LinksAreLookedAtOrFollowed) {
  Shell(
      "mkdir -p /sdcard/t; echo hello > /sdcard/t/file; ln -s file /sdcard/t/link; ln -s gone "
      "/sdcard/t/broken");
  const dk::Entry link = phone().stat("/sdcard/t/link", DK_NO_FOLLOW).value();
  EXPECT_EQ(link.type, DK_LINK);
  EXPECT_EQ(link.link_target, "file");
  const dk::Entry file = phone().stat("/sdcard/t/link").value();
  EXPECT_EQ(file.type, DK_FILE);
  EXPECT_EQ(file.size, 6U);
  EXPECT_EQ(file.path, "/sdcard/t/link");
  EXPECT_EQ(phone().stat("/sdcard/t/broken", DK_NO_FOLLOW).value().type, DK_LINK);
  EXPECT_EQ(phone().stat("/sdcard/t/broken").code(), DK_NOT_FOUND);
}

TEST_P(Files, ThatAreNeitherFilesNorFoldersAreSpecial) {
  EXPECT_EQ(phone().stat("/dev/null").value().type, DK_SPECIAL);
}

TEST_P(Files, OfAnyNameAreMadeFoundMovedCopiedAndRemoved) {
  ASSERT_TRUE(phone().make_folder("/sdcard/t"));
  for (const std::string& name : kAwkward) {
    const std::string path = "/sdcard/t/" + name;
    ASSERT_TRUE(phone().make_folder(path)) << name;
    EXPECT_EQ(phone().stat(path).value().name, name);
    ASSERT_TRUE(phone().move(path, path + "2")) << name;
    ASSERT_TRUE(phone().copy(path + "2", path)) << name;
    EXPECT_EQ(NamesIn("/sdcard/t"), (std::set<std::string>{name, name + "2"}));
    ASSERT_TRUE(phone().remove(path)) << name;
    ASSERT_TRUE(phone().remove(path + "2", true)) << name;
    EXPECT_TRUE(NamesIn("/sdcard/t").empty()) << name;
  }
}

TEST_P(Files, AreNotReplacedUnasked) {
  Shell("mkdir -p /sdcard/t/folder; echo new > /sdcard/t/a; echo old > /sdcard/t/b");
  for (auto change : {&dk::Device::move, &dk::Device::copy}) {
    EXPECT_EQ((phone().*change)("/sdcard/t/a", "/sdcard/t/b", false, {}).code(), DK_EXISTS);
    EXPECT_EQ((phone().*change)("/sdcard/t/a", "/sdcard/t/folder", true, {}).code(), DK_IS_A_DIRECTORY);
    EXPECT_EQ((phone().*change)("/sdcard/t/gone", "/sdcard/t/c", false, {}).code(), DK_NOT_FOUND);
  }
  EXPECT_EQ(Shell("cat /sdcard/t/b"), "old\n");
  EXPECT_TRUE(phone().copy("/sdcard/t/a", "/sdcard/t/b", true));
  EXPECT_EQ(Shell("cat /sdcard/t/b"), "new\n");
  EXPECT_TRUE(phone().move("/sdcard/t/a", "/sdcard/t/b", true));
  EXPECT_EQ(NamesIn("/sdcard/t"), (std::set<std::string>{"b", "folder"}));
}

TEST_P(Files, WholeVolumesAreNotRemoved) {
  for (const char* path :
       {"/", "/sdcard", "/sdcard/", "/storage/emulated/0", "/sdcard/DCIM/../..", "/data"}) {
    EXPECT_EQ(phone().remove(path, true).code(), DK_INVALID_ARGUMENT) << path;
  }
}

TEST_P(Files, AFullFolderIsRemovedOnlyWithAllInIt) {
  Shell("mkdir -p /sdcard/t/full; echo x > /sdcard/t/full/x");
  EXPECT_EQ(phone().remove("/sdcard/t/full").code(), DK_NOT_EMPTY);
  EXPECT_TRUE(phone().remove("/sdcard/t/full", true));
  EXPECT_EQ(phone().remove("/sdcard/t/full").code(), DK_NOT_FOUND);
}

TEST_P(Files, PartsAreRead) {
  Shell(
      "mkdir -p /sdcard/t; i=0; while [ $i -lt 3000 ]; do echo \"line $i of a file that has more than one "
      "block of the phone\"; "
      "i=$((i+1)); done > /sdcard/t/file");
  const std::string whole = phone().read("/sdcard/t/file").value();
  ASSERT_GT(whole.size(), 150000U);
  EXPECT_EQ(phone().read("/sdcard/t/file", 0, 10).value(), whole.substr(0, 10));
  EXPECT_EQ(phone().read("/sdcard/t/file", 65530, 20).value(), whole.substr(65530, 20));
  EXPECT_EQ(phone().read("/sdcard/t/file", 131072).value(), whole.substr(131072));
  EXPECT_EQ(phone().read("/sdcard/t/file", 1000000, 5).value(), "");
  EXPECT_EQ(phone().read("/sdcard/t/gone").code(), DK_NOT_FOUND);
  EXPECT_EQ(phone().read("/sdcard/t/gone", 5).code(), DK_NOT_FOUND);
  EXPECT_EQ(phone().read("/sdcard/t").code(), DK_IS_A_DIRECTORY);
  EXPECT_EQ(phone().read("/sdcard/t", 5).code(), DK_IS_A_DIRECTORY);
}

TEST_P(Files, AWalkFindsAllBelow) {
  Shell(
      "mkdir -p /sdcard/t/a/b/c /sdcard/t/d; echo 1 > /sdcard/t/a/one.JPG; echo 22 > /sdcard/t/a/b/two.png; "
      "echo 333 > /sdcard/t/a/b/c/three.jpg; ln -s /sdcard /sdcard/t/d/up");
  const auto walk = [&](const dk_walk_options& options) {
    std::set<std::string> paths;
    phone()
        .walk("/sdcard/t", options,
              [&](const dk_entry& entry) { return paths.insert(entry.path + 10).second; })
        .value();
    return paths;
  };
  dk_walk_options options = DK_WALK_OPTIONS_INIT;
  EXPECT_EQ(walk(options), (std::set<std::string>{"a", "a/b", "a/b/c", "a/b/c/three.jpg", "a/b/two.png",
                                                  "a/one.JPG", "d", "d/up"}));
  options.max_depth = 1;
  EXPECT_EQ(walk(options), (std::set<std::string>{"a", "d"}));
  options.max_depth = 0;
  const char* const suffixes[] = {"jpg"};
  options.suffixes = suffixes;
  options.suffix_count = 1;
  EXPECT_EQ(walk(options), (std::set<std::string>{"a/one.JPG", "a/b/c/three.jpg"}));
}

}  // namespace
}  // namespace darokleim::test

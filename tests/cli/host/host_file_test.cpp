#include "tools/cli/host/host_file.h"

#include <gmock/gmock.h>

#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/run_mark.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;
using testing::UnorderedElementsAre;

class HostFileTest : public testing::Test {
 protected:
  std::string File(const std::string& name) const { return directory_.File(name); }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(File("."))) names.push_back(entry.path().filename());
    return names;
  }

  test::TemporaryDirectory directory_;
};

TEST_F(HostFileTest, AnUnfinishedFileTakesItsPlaceWhole) {
  test::WriteFile(File("a"), "old");
  {
    UnfinishedOnHost file(File("a"));
    test::WriteFile(file.path(), "new");
    EXPECT_EQ(test::ReadFile(File("a")), "old");
    file.PutInPlace();
  }
  EXPECT_EQ(test::ReadFile(File("a")), "new");
  EXPECT_THAT(Names(), UnorderedElementsAre("a"));
}

TEST_F(HostFileTest, WhatIsNotPutInPlaceGoes) {
  test::WriteFile(File("a"), "old");
  {
    const UnfinishedOnHost file(File("a"));
    test::WriteFile(file.path(), "half");
  }
  EXPECT_EQ(test::ReadFile(File("a")), "old");
  EXPECT_THAT(Names(), UnorderedElementsAre("a"));
}

TEST_F(HostFileTest, AFolderIsMerged) {
  fs::create_directories(File("to/both"));
  test::WriteFile(File("to/both/kept"), "1");
  test::WriteFile(File("to/both/replaced"), "2");
  UnfinishedOnHost folder(File("to"));
  fs::create_directories(folder.path() / "both");
  fs::create_directories(folder.path() / "new/deep");
  test::WriteFile(folder.path() / "both/replaced", "3");
  test::WriteFile(folder.path() / "new/deep/file", "4");
  folder.PutInPlace();
  EXPECT_EQ(test::ReadFile(File("to/both/kept")), "1");
  EXPECT_EQ(test::ReadFile(File("to/both/replaced")), "3");
  EXPECT_EQ(test::ReadFile(File("to/new/deep/file")), "4");
}

TEST_F(HostFileTest, NeedsAFolderToWriteIn) {
  EXPECT_THROW(UnfinishedOnHost(File("missing/a")), ToolError);
}

TEST_F(HostFileTest, SizesAndFilesOfAFolder) {
  fs::create_directories(File("f/g"));
  test::WriteFile(File("f/a"), "12345");
  test::WriteFile(File("f/g/b"), "67");
  EXPECT_EQ(SizeOnHost(File("f")), 7u);
  EXPECT_EQ(SizeOnHost(File("f/a")), 5u);
  EXPECT_EQ(SizeOnHost(File("missing")), 0u);
  std::vector<std::string> paths;
  for (const auto& file : FilesBelow(File("f"))) paths.push_back(file.path);
  EXPECT_THAT(paths, UnorderedElementsAre("a", "g/b"));
  EXPECT_THROW(FilesBelow(File("missing")), ToolError);
}

TEST_F(HostFileTest, AbsolutePathsHaveNoSlashAtTheirEnd) {
  EXPECT_EQ(AbsolutePath("/a/b/../c/"), "/a/c");
  EXPECT_EQ(AbsolutePath("x"), fs::current_path() / "x");
  EXPECT_EQ(AbsolutePath("."), fs::current_path());
}

TEST_F(HostFileTest, AKilledRunsFolderIsRemovedByTheNext) {
  fs::create_directory(File(".darokleim-abcdef"));
  test::WriteFile(File(".darokleim-abcdef/unfinished"), "half");
  const UnfinishedOnHost living(File("a"));
  const UnfinishedOnHost next(File("b"));
  EXPECT_FALSE(fs::exists(File(".darokleim-abcdef")));
  EXPECT_TRUE(fs::exists(living.path().parent_path()));
}

TEST(RunMark, OfALivingRunHasNotEnded) {
  EXPECT_FALSE(HasEnded(OwnRunName()));
  const std::string own = OwnRunName();
  EXPECT_TRUE(HasEnded(own.substr(0, own.find('-') + 1) + "000000"));
  EXPECT_FALSE(HasEnded("0123456789abcdef-000000"));
  EXPECT_FALSE(HasEnded(own.substr(0, own.find('-') + 1) + "../../"));
  EXPECT_FALSE(HasEnded(""));
}

}  // namespace
}  // namespace darokleim::cli

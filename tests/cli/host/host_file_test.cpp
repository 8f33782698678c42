#include "tools/cli/host/host_file.h"

#include <gmock/gmock.h>

#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"
#include "tools/cli/errors.h"

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

TEST_F(HostFileTest, NeedsAFolderToWriteIn) {
  EXPECT_THROW(UnfinishedOnHost(File("missing/a")), ToolError);
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

}  // namespace
}  // namespace darokleim::cli

#include "log/rotating_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::log {
namespace {

constexpr RotatingFile::Limits kLimits = {.bytes = 10, .old_parts = 2};

class RotatingFileTest : public testing::Test {
 protected:
  std::string Content(const std::string& name) const { return test::ReadFile(directory_.File(name)); }
  bool Exists(const std::string& name) const { return std::filesystem::exists(directory_.File(name)); }

  test::TemporaryDirectory directory_;
};

TEST_F(RotatingFileTest, KeepsTheNewestParts) {
  const auto file = RotatingFile::Open(directory_.File("a.log"), kLimits);
  ASSERT_NE(file, nullptr);
  for (const char* entry : {"one\n", "two\n", "three\n", "four\n", "five\n", "six\n", "seven\n", "eight\n"})
    EXPECT_TRUE(file->Append(entry));
  EXPECT_EQ(Content("a.log"), "eight\n");
  EXPECT_EQ(Content("a.1.log"), "six\nseven\n");
  EXPECT_EQ(Content("a.2.log"), "four\nfive\n");
  EXPECT_FALSE(Exists("a.3.log"));
}

TEST_F(RotatingFileTest, HoldsAnEntryThatIsLargerThanTheLimit) {
  const auto file = RotatingFile::Open(directory_.File("a.log"), kLimits);
  for (const char* entry : {"before\n", "longer than ten bytes\n", "after\n"})
    EXPECT_TRUE(file->Append(entry));
  EXPECT_EQ(Content("a.log"), "after\n");
  EXPECT_EQ(Content("a.1.log"), "longer than ten bytes\n");
  EXPECT_EQ(Content("a.2.log"), "before\n");
}

TEST_F(RotatingFileTest, GoesOnWhereAnEarlierOneEnded) {
  test::WriteFile(directory_.File("a.log"), "12345678");
  const auto file = RotatingFile::Open(directory_.File("a.log"), kLimits);
  EXPECT_TRUE(file->Append("9\n"));
  EXPECT_EQ(Content("a.log"), "123456789\n");
  EXPECT_TRUE(file->Append("next"));
  EXPECT_EQ(Content("a.1.log"), "123456789\n");
}

TEST_F(RotatingFileTest, PutsTheNumberBeforeTheExtension) {
  const struct {
    const char *name, *part;
  } names[] = {{"with.dots.log", "with.dots.1.log"},
               {"none", "none.1"},
               {".hidden", ".hidden.1"},
               {"ends.", "ends..1"},
               {"dir.d/none", "dir.d/none.1"}};
  for (const auto& [name, part] : names) {
    const auto file = RotatingFile::Open(directory_.File(name), kLimits);
    ASSERT_NE(file, nullptr) << name;
    EXPECT_TRUE(file->Append("12345678") && file->Append("9012")) << name;
    EXPECT_EQ(Content(part), "12345678") << name;
  }
}

TEST_F(RotatingFileTest, LosesNothingWhenItCannotBeRotated) {
  const auto file = RotatingFile::Open(directory_.File("a.log"), kLimits);
  EXPECT_TRUE(file->Append("12345678"));
  std::filesystem::create_directories(directory_.File("a.1.log/in the way"));
  std::filesystem::create_directories(directory_.File("a.2.log/in the way"));
  EXPECT_FALSE(file->Append("9012"));
  EXPECT_EQ(Content("a.log"), "12345678");
}

TEST_F(RotatingFileTest, IsNeverAPipe) {
  ASSERT_EQ(mkfifo(directory_.File("pipe").c_str(), 0600), 0);
  EXPECT_EQ(RotatingFile::Open(directory_.File("pipe"), kLimits), nullptr);
  const base::UniqueFd reader(open(directory_.File("pipe").c_str(), O_RDONLY | O_NONBLOCK));
  EXPECT_EQ(RotatingFile::Open(directory_.File("pipe"), kLimits), nullptr) << "nor one with a reader";
}

}  // namespace
}  // namespace darokleim::log

// Commands that write to this computer, whose disk is full.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "tests/cli/phone_tool_test.h"
#include "tests/support/file_content.h"
#include "tests/support/own_process.h"

#if defined(__linux__)
#include "tests/support/host_disk.h"

namespace darokleim::cli {
namespace {

class FullDiskTest : public PhoneToolTest {};

TEST_P(FullDiskTest, KeepsTheOlderFileAndLeavesNothingElse) {
  phones().Adb({"install", DAROKLEIM_PHONE_TEST_DATA "/notes-1.apk"});
  PutOnPhone("/sdcard/file", "content");
  const std::vector<std::pair<std::string, Words>> commands = {
      {"a.png", {"screenshot", "a.png"}},
      {"notes.ab", {"backup", kNotes, "notes.ab"}},
      {std::string(kNotes) + ".apk", {"app", "pull", kNotes}},
      {"file", {"pull", "/sdcard/file", "."}},
  };
  const std::string disk = File("work");
  test::InProcessOfItsOwn([&] {
    ASSERT_TRUE(test::MountDisk(disk, 0));
    for (const auto& [name, words] : commands) test::WriteFile(disk + "/" + name, "older");
    std::ofstream(disk + "/ballast") << std::string(2 << 20, 'x');
    for (const auto& [name, words] : commands) {
      const test::Outcome outcome = Run(words);
      EXPECT_EQ(outcome.status, 1) << name;
      EXPECT_THAT(outcome.errors, testing::HasSubstr("No space left on device")) << name;
      EXPECT_EQ(test::ReadFile(disk + "/" + name), "older");
    }
    const auto entries = std::distance(std::filesystem::directory_iterator(disk), {});
    EXPECT_EQ(static_cast<std::size_t>(entries), commands.size() + 1) << "nothing unfinished is left";
    std::filesystem::remove(disk + "/ballast");
    for (const auto& [name, words] : commands) {
      EXPECT_EQ(Run(words).status, 0) << name;
      EXPECT_NE(test::ReadFile(disk + "/" + name), "older") << "there is space again";
    }
  });
}

INSTANTIATE_TEST_SUITE_P(, FullDiskTest, testing::Values("modern"),
                         [](const auto& phone) { return phone.param; });

}  // namespace
}  // namespace darokleim::cli
#endif

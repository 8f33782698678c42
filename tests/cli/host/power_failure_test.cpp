// What a loss of power may take: a file that replaces an older one is on the disk before it takes its place.
#include <algorithm>

#include "tests/cli/phone_tool_test.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

class PhonePowerFailureTest : public PhoneToolTest {
 protected:
  PhonePowerFailureTest() {
    PutOnPhone("/sdcard/a", "new");
    test::WriteFile(File("work/a"), "older");
    Set("LD_PRELOAD", DAROKLEIM_SYNC_RECORDER);
    Set("DAROKLEIM_SYNC_RECORD", File("record"));
  }

  void ExpectSyncedBeforeItIsRenamedTo(const std::string& name) const {
    const auto lines = test::ReadLines(File("record"));
    const auto renamed = std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
      return line.starts_with("rename ") && line.ends_with(" " + name);
    });
    ASSERT_NE(renamed, lines.end()) << test::ReadFile(File("record"));
    const std::string file = renamed->substr(7, renamed->find(' ', 7) - 7);
    EXPECT_NE(std::find(lines.begin(), renamed, "sync " + file), renamed) << test::ReadFile(File("record"));
  }
};

TEST_P(PhonePowerFailureTest, APulledFileIsSyncedBeforeItReplacesAnOlderOne) {
  Succeed({"pull", "/sdcard/a"});
  EXPECT_EQ(test::ReadFile(File("work/a")), "new");
  ExpectSyncedBeforeItIsRenamedTo("a");
}

TEST_P(PhonePowerFailureTest, AScreenshotIsSyncedBeforeItReplacesAnOlderOne) {
  Succeed({"screenshot", "a"});
  EXPECT_NE(test::ReadFile(File("work/a")), "older");
  ExpectSyncedBeforeItIsRenamedTo("a");
}

INSTANTIATE_FOR_BOTH_PHONES(PhonePowerFailureTest);

}  // namespace
}  // namespace darokleim::cli

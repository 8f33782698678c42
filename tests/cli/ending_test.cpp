// How commands end that would not end by themselves.
#include <gmock/gmock.h>
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/cli/phone_tool_test.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"
#include "tests/support/scripted_server.h"

namespace darokleim::cli {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::HasSubstr;

// The limit of a test is longer than that of the tool: other programs use the processors as well.
constexpr milliseconds kASecondAndAHalf(1500);

class EndingTest : public PhoneToolTest {};

// A phone that takes a connection and says nothing.
TEST_P(EndingTest, OfAnyCommandOnAHangingPhoneIsASignalAway) {
  test::WriteFile(File("work/a"), "x");
  SwitchOn("slow=60");
  int number = 0;
  for (const Words& words :
       {Words{"ls", "/sdcard"}, Words{"pull", "/sdcard"}, Words{"push", "a", "/sdcard"}, Words{"info"},
        Words{"app", "list"}, Words{"screenshot"}, Words{"logcat"}, Words{"shell", "true"}, Words{"storage"},
        Words{"rm", "/sdcard/a"}, Words{"type", "a"}}) {
    SCOPED_TRACE(testing::PrintToString(words));
    const auto tool = Start(words);
    std::this_thread::sleep_for(milliseconds(100));
    const auto start = steady_clock::now();
    constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
    tool->Signal(kSignals[number++ % 3]);
    const auto outcome = tool->Finish();
    EXPECT_LT(steady_clock::now() - start, kASecondAndAHalf);
    EXPECT_EQ(outcome.status, 130) << outcome.errors;
  }
  EXPECT_TRUE(std::filesystem::exists(File("work/a")));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(File("work")), {}), 1);
}

// What a cancelled push has begun is removed by the phone, which does not answer any more.
TEST_P(EndingTest, OfACleanUpThatHangsHasALimit) {
  test::WriteFile(File("work/big"), "");
  std::filesystem::resize_file(File("work/big"), 1ull << 30);
  const auto tool = Start({"push", "big", "/sdcard"});
  ASSERT_TRUE(test::Eventually([this] { return !Shell("ls -a /sdcard/ | grep darokleim").empty(); }));
  SwitchOn("slow=60");
  const auto start = steady_clock::now();
  tool->Signal(SIGINT);
  EXPECT_EQ(tool->Finish().status, 130);
  EXPECT_LT(steady_clock::now() - start, kASecondAndAHalf);
}

INSTANTIATE_TEST_SUITE_P(, EndingTest, testing::Values("modern"),
                         [](const auto& phone) { return phone.param; });

class EndlessListTest : public ToolTest {};

TEST_F(EndlessListTest, EndsWithTheLimitInTime) {
  std::string many;
  for (int i = 0; i < 1000; ++i) {
    const std::string name = "file" + std::to_string(i);
    const auto size = static_cast<std::uint32_t>(name.size());
    many += "DNT2" + test::Number32(0) + test::Number64(1) + test::Number64(1) + test::Number32(0100644) +
            std::string(12, '\0') + test::Number64(1) + std::string(24, '\0') + test::Number32(size) + name;
  }
  const test::ScriptedPhone phone("shell_v2,cmd,stat_v2,ls_v2",
                                  [&many](const std::string& service, int connection) {
                                    test::WriteBytes(connection, "OKAY");
                                    if (service != "sync:") return;
                                    while (test::WriteBytes(connection, many))
                                      std::this_thread::sleep_for(milliseconds(1));
                                  });
  Set("ANDROID_ADB_SERVER_PORT", phone.port());
  const auto start = steady_clock::now();
  const auto outcome = Run({"-s", "X", "--timeout", "0.5", "ls", "/sdcard"});
  EXPECT_LT(steady_clock::now() - start, milliseconds(3000));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("--timeout"));
}

}  // namespace
}  // namespace darokleim::cli

// Many calls: one after the other, and at once.
#include <vector>

#include "tests/channel/channel_run.h"
#include "tests/support/open_descriptors.h"

namespace darokleim::channel {
namespace {

class ManyTest : public ChannelTest {};

#if defined(__linux__)
TEST_F(ManyTest, LeaveNoZombieAndNoDescriptor) {
  RunAdb(" exit:0");
  const size_t before = test::OpenDescriptors();
  std::vector<std::thread> threads;
  std::atomic<int> wrong = 0;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 2500; ++i) wrong += RunAdb(" exit:3").status != 1003;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(test::OpenDescriptors(), before);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}
#endif

TEST_F(ManyTest, AtOnce) {
  std::vector<std::thread> threads;
  std::atomic<int> wrong = 0;
  for (int t = 0; t < 64; ++t) {
    threads.emplace_back([&, t] {
      const std::string text = "thread" + std::to_string(t);
      for (int i = 0; i < 5; ++i) {
        const Result result =
            RunAdb(" print:" + text + " flood:200000 print:" + text + " exit:" + std::to_string(t));
        const bool right = result.status == (t == 0 ? 0 : 1000 + t) &&
                           result.output.size() == 200000 + 2 * text.size() &&
                           result.output.compare(0, text.size(), text) == 0;
        wrong += !right;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace darokleim::channel

// darokleim screenshot, ended early, on simulated phones.
#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/cli/phone_tool_test.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

class PhoneScreenshotTest : public PhoneToolTest {
 protected:
  bool HasPictureOnPhone() const { return !fs::is_empty(PhoneFiles() + "/data/local/tmp"); }
  static bool HasEnded(const HostProcess& tool) {
    siginfo_t info = {};
    return waitid(P_PID, static_cast<id_t>(tool.pid()), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == tool.pid();
  }
};

// Each command of the phone waits for a second. A picture that is a file there is cancelled when it is about to be fetched.
TEST_P(PhoneScreenshotTest, ThatIsCancelledLeavesNoPicture) {
  SwitchOn("slow=1");
  const auto tool = Start({"screenshot", "screen.png"});
  while (!HasPictureOnPhone() && !HasEnded(*tool)) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  const bool has_picture = HasPictureOnPhone();
  tool->Signal(SIGINT);
  const auto outcome = tool->Finish();
  EXPECT_EQ(outcome.status, has_picture ? 130 : 0) << outcome.errors;
  EXPECT_EQ(fs::exists(File("work/screen.png")), !has_picture);
  EXPECT_FALSE(HasPictureOnPhone());
}

INSTANTIATE_FOR_BOTH_PHONES(PhoneScreenshotTest);

}  // namespace
}  // namespace darokleim::cli

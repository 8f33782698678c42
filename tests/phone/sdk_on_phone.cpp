#include "tests/phone/sdk_on_phone.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace darokleim::test {

namespace {

namespace fs = std::filesystem;

// The library is started once in a process and keeps the adb that it was given.
class StartedLibrary : public testing::Environment {
 public:
  void SetUp() override {
    folder_ = (fs::temp_directory_path() / "darokleim-sdk-test-XXXXXX").string();
    ASSERT_NE(mkdtemp(folder_.data()), nullptr);
    for (const char* program : {"adb", "busybox"})
      fs::create_symlink(PathOfProgram(program), folder_ + "/" + program);
    setenv("DAROKLEIM_CHANNEL", kMode.data(), 1);
    ASSERT_EQ(AdbSdkInit(folder_.c_str(), "phone_sdk_test", folder_.c_str()), kOk);
  }
  void TearDown() override { fs::remove_all(folder_); }

 private:
  std::string folder_;
};

const testing::Environment* const kStartedLibrary = testing::AddGlobalTestEnvironment(new StartedLibrary);

}  // namespace

void SdkOnPhone::SetUp() {
  PhoneUnderTest::SetUp();
  if (is_simulated()) setenv("ANDROID_ADB_SERVER_PORT", port().c_str(), 1);
}

std::string SdkOnPhone::Taken(char** text, int length) {
  std::string taken = *text == nullptr ? "" : std::string(*text, static_cast<size_t>(length));
  while (!taken.empty() && taken.back() == '\0') taken.pop_back();
  AdbFreeResource(text);
  return taken;
}

}  // namespace darokleim::test

#include "tests/phone/each_phone.h"

#include <darokleim.h>
#include <stdlib.h>

#include "src/platform/command_channel.h"

namespace darokleim::test {

namespace fs = std::filesystem;

namespace {

// The programs that the library is started with. It starts once in a process and keeps them.
class Resources {
 public:
  Resources() {
    std::string folder = (fs::temp_directory_path() / "darokleim-resources-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) return;
    folder_ = folder;
    for (const char* program : {"adb", "busybox"}) {
      fs::create_symlink(PathOfProgram(program), folder_ / program);
    }
  }
  ~Resources() {
    std::error_code error;
    fs::remove_all(folder_, error);
  }
  Resources(const Resources&) = delete;
  Resources& operator=(const Resources&) = delete;

  const fs::path& folder() const { return folder_; }

 private:
  fs::path folder_;
};

}  // namespace

void EachPhone::SetUp() {
  std::string folder = (fs::temp_directory_path() / "darokleim-each-phone-XXXXXX").string();
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  host_folder_ = folder;
  phone_files_ = phones_.FilesOf(serial());
  setenv("ANDROID_ADB_SERVER_PORT", phones_.port().c_str(), 1);
  setenv("DAROKLEIM_CHANNEL", GetParam().mode.c_str(), 1);
  static const Resources resources;
  const std::string programs = resources.folder().string();
  AdbSdkInit(programs.c_str(), "each_phone", programs.c_str());
  // Its channel can be initialised again.
  InitAdbCommuncation2Server((programs + "/adb").c_str(), programs.c_str(), "each_phone");
}

void EachPhone::TearDown() {
  std::error_code error;
  fs::remove_all(host_folder_, error);
}

void EachPhone::Control(Words words) const {
  words.insert(words.begin(), serial());
  const Outcome outcome = phones_.Control(words);
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
}

std::string NameOfCombination(const testing::TestParamInfo<Combination>& combination) {
  return combination.param.Name();
}

}  // namespace darokleim::test

// What goes wrong between the library and the phone, on every part of the way, through the real adb client.
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <thread>

#include "tests/phone/host_sockets.h"
#include "tests/phone/sdk_on_phone.h"
#include "tests/support/own_process.h"

#if defined(__linux__)
#include "tests/support/host_disk.h"
#endif

namespace darokleim::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A call that fails must not need longer than a busy machine may take for one.
constexpr std::chrono::seconds kNoHang{30};

class SdkFaults : public SdkOnPhone {
 protected:
  void SetUp() override {
    SdkOnPhone::SetUp();
    REQUIRE_SIMULATED_PHONE("has no faults to order");
  }
  // Sparse: such a file takes no room on the phone.
  std::string LargeFile(const std::string& size) {
    const std::string file = OnPhone("large");
    EXPECT_EQ(Shell("truncate -s " + size + " " + file).status, 0);
    return file;
  }
  int Pull(const std::string& file, const std::string& target, const bool* cancel = nullptr) {
    const auto start = steady_clock::now();
    const int code = AdbPullFile(phone(), file.c_str(), target.c_str(), cancel == nullptr ? cancel_ : cancel);
    EXPECT_LT(steady_clock::now() - start, kNoHang);
    return code;
  }
  // Happens when the first bytes have come.
  template <typename Action>
  std::thread WhenItHasBegun(const std::string& target, Action action) {
    return std::thread([=] {
      EXPECT_TRUE(Eventually([&] {
        std::error_code error;
        return std::filesystem::file_size(target, error) > 0 && !error;
      }));
      action();
    });
  }
};

TEST_P(SdkFaults, ThePhoneIsUnpluggedInMidTransfer) {
  const std::string file = LargeFile("4G");
  std::thread unplug = WhenItHasBegun(OnHost("back"), [this] { Control({"unplug"}); });
  EXPECT_EQ(Pull(file, OnHost("back")), kCutTransfer);
  unplug.join();
  EXPECT_EQ(AdbGetPhoneProductModel(phone(), buffer_, sizeof(buffer_), cancel_), ADB_RESULT_NO_DEVICE);
  Control({"plug"});
  EXPECT_EQ(AdbGetPhoneProductModel(phone(), buffer_, sizeof(buffer_), cancel_), kOk);
}

TEST_P(SdkFaults, TheTransferIsCancelled) {
  const std::string file = LargeFile("4G");
  bool cancel = false;
  std::thread user =
      WhenItHasBegun(OnHost("back"), [&cancel] { __atomic_store_n(&cancel, true, __ATOMIC_SEQ_CST); });
  EXPECT_EQ(Pull(file, OnHost("back"), &cancel), 3003);
  user.join();
  EXPECT_EQ(AdbGetPhoneProductModel(phone(), buffer_, sizeof(buffer_), cancel_), kOk);
}

TEST_P(SdkFaults, TheConnectionBreaksInMidCommand) {
  const std::string file = LargeFile("4M");
  Shell("cd " + storage_folder() + " && for i in $(seq 2000); do : > a_file_with_a_long_name_$i; done");
  SwitchOn("drop-after=40K");
  EXPECT_EQ(Pull(file, OnHost("back")), kCutTransfer);
  const int listed = AdbGetDirFiles(phone(), storage_folder().c_str(), &text_, &length_, 0, 1, cancel_);
  if (kDirect && !is_legacy()) {
    EXPECT_EQ(listed, ADB_CHANNEL_CONNECTION_BROKEN);
  } else {  // adb does not say that a listing is incomplete, nor does the old shell: complete lines are there
    EXPECT_EQ(listed, kOk);
    EXPECT_NE(Taken(&text_, length_), "");
  }
  Control({"clear", "drop-after"});
  EXPECT_EQ(Pull(file, OnHost("back")), kOk);
}

TEST_P(SdkFaults, TheServerIsKilledInMidCall) {
  SimulatedPhones phones({is_legacy() ? "KILLED1,fault=slow=20,android=legacy" : "KILLED1,fault=slow=20"});
  setenv("ANDROID_ADB_SERVER_PORT", phones.port().c_str(), 1);
  std::thread killer([&] {
    std::this_thread::sleep_for(milliseconds(500));
    phones.process().Signal(SIGKILL);
  });
  const auto start = steady_clock::now();
  EXPECT_EQ(AdbGetPhoneProductModel("KILLED1", buffer_, sizeof(buffer_), cancel_), kBrokenOff);
  EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(15)) << "the phone would have answered";
  killer.join();
  // On a machine so busy that the call came after the end, adb has started a server of its own.
  phones.Adb({"kill-server"});
}

TEST_P(SdkFaults, SomethingElseListensWhereTheServerShould) {
  for (const char* answer : {"", "HTTP/1.0 400 Bad Request\r\n\r\n"}) {
    const ForeignServer server(answer);
    setenv("ANDROID_ADB_SERVER_PORT", server.port().c_str(), 1);
    EXPECT_EQ(AdbGetDevicesEx(&text_, &length_, cancel_), ADB_RESULT_PROTOCOL_FAULT) << answer;
    EXPECT_EQ(text_, nullptr);
    EXPECT_EQ(AdbPushFile(phone(), DataFile("notes-1.apk").c_str(), "/sdcard/a", cancel_),
              ADB_RESULT_PROTOCOL_FAULT);
  }
}

// adb wants to end a server of another version and start its own, for which there is no port.
TEST_P(SdkFaults, TheServerIsOfAnotherVersionAndStays) {
  const ForeignServer server("OKAY00040020");
  setenv("ANDROID_ADB_SERVER_PORT", server.port().c_str(), 1);
  if (kDirect) {  // it is asked like any other
    EXPECT_EQ(AdbGetDevicesEx(&text_, &length_, cancel_), kOk);
    return;
  }
  EXPECT_EQ(AdbGetDevicesEx(&text_, &length_, cancel_), ADB_RESULT_CANNOT_CONNECT_DAEMON);
  EXPECT_EQ(AdbGetPhoneProductModel(phone(), buffer_, sizeof(buffer_), cancel_),
            ADB_RESULT_CANNOT_CONNECT_DAEMON);
}

TEST_P(SdkFaults, ASlowPhoneIsWaitedForUntilTheCallIsCancelled) {
  SwitchOn("slow=1");
  EXPECT_EQ(AdbGetPhoneProductModel(phone(), buffer_, sizeof(buffer_), cancel_), kOk);
  SwitchOn("slow=60");
  bool cancel = false;
  std::thread user([&] {
    std::this_thread::sleep_for(milliseconds(200));
    __atomic_store_n(&cancel, true, __ATOMIC_SEQ_CST);
  });
  const auto start = steady_clock::now();
  EXPECT_EQ(AdbGetPhoneProductModel(phone(), buffer_, sizeof(buffer_), &cancel), 3003);
  EXPECT_LT(steady_clock::now() - start, kNoHang);
  user.join();
  Control({"clear", "slow"});
}

TEST_P(SdkFaults, ThePhoneIsInRecovery) {
  Control({"state", "recovery"});
  EXPECT_EQ(AdbGetDevicesEx(&text_, &length_, cancel_), kOk);
  EXPECT_EQ(Taken(&text_, length_), "") << "no state that is listed";
  Control({"state", "device"});
}

TEST_P(SdkFaults, TheHostsFolderIsMissing) {
  const std::string file = LargeFile("1K");
  EXPECT_EQ(Pull(file, OnHost("no/such/folder/file")), ADB_RESULT_NO_SUCH_FILE);
  EXPECT_EQ(AdbPushFile(phone(), OnHost("none").c_str(), OnPhone("there").c_str(), cancel_),
            ADB_RESULT_NO_SUCH_FILE);
}

#if defined(__linux__)
TEST_P(SdkFaults, TheHostsDiskIsFull) {
  const std::string file = LargeFile("4M");
  const std::string disk = OnHost("disk");
  std::filesystem::create_directory(disk);
  test::InProcessOfItsOwn([&] {
    ASSERT_TRUE(MountDisk(disk, 0)) << strerror(errno);
    EXPECT_EQ(Pull(file, disk + "/back"), ADB_RESULT_NO_SPACE_LEFT);
    EXPECT_FALSE(std::filesystem::exists(disk + "/back")) << "adb takes back what it began";
    WriteFile(disk + "/filler", std::string(2 << 20, 'x'));
    EXPECT_EQ(AdbScreencapToPC(phone(), (disk + "/screen.png").c_str(), cancel_), ADB_RESULT_NO_SPACE_LEFT);
    std::filesystem::remove(disk + "/filler");
    EXPECT_EQ(Pull(LargeFile("4K"), disk + "/small"), kOk);
  });
}

TEST_P(SdkFaults, TheHostsDiskIsReadOnly) {
  const std::string file = LargeFile("4K");
  const std::string disk = OnHost("disk");
  std::filesystem::create_directory(disk);
  test::InProcessOfItsOwn([&] {
    ASSERT_TRUE(MountDisk(disk, MS_RDONLY)) << strerror(errno);
    EXPECT_EQ(Pull(file, disk + "/back"), 1001);
    EXPECT_FALSE(std::filesystem::exists(disk + "/back"));
  });
}
#endif

INSTANTIATE_FOR_PHONES(SdkFaults);

}  // namespace
}  // namespace darokleim::test

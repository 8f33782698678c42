// What the public header promises of devices that are not ready, of transfers and of listings.
#include <sys/stat.h>
#include <utime.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>
#include <vector>

#include "tests/phone/sdk_on_phone.h"

namespace darokleim::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

// Functions that take a serial, by the codes that the header's table gives for a device that is not ready.
struct NotReady {
  int absent;
  int unauthorized;
  int offline;
  std::vector<std::function<int(const char* serial)>> calls;
};

template <typename Function, typename... Rest>
std::function<int(const char*)> HandingOut(Function* function, Rest... rest) {
  return [=](const char* serial) {
    char* block = nullptr;
    int length = 0;
    const int code = function(serial, &block, &length, rest...);
    AdbFreeResource(&block);
    return code;
  };
}

template <typename Function>
std::function<int(const char*)> ListingOf(Function* function) {
  return [=](const char* serial) {
    char* json = nullptr;
    int length = 0;
    const int code = function(serial, "/sdcard/", &json, &length, 0, 0, nullptr);
    AdbFreeResource(&json);
    return code;
  };
}

template <typename Function>
std::function<int(const char*)> IntoBuffer(Function* function) {
  return [=](const char* serial) {
    char buffer[128];
    return function(serial, buffer, sizeof(buffer), nullptr);
  };
}

std::vector<NotReady> ByCodes() {
  const auto file_size = [](const char* serial) {
    unsigned long long size = 0;
    return AdbGetFileSize(serial, "/sdcard/a", &size, nullptr);
  };
  const auto is_rooted = [](const char* serial) {
    bool rooted = false;
    return IsDeviceHadBeenRooted(serial, &rooted, nullptr);
  };
  const auto is_installed = [](const char* serial) {
    bool installed = false;
    return AdbCheckAppInstalled(serial, "com.example", &installed, nullptr);
  };
  return {
      {ADB_RESULT_NO_DEVICE,
       ADB_RESULT_DEVICE_UNAUTHORIZED,
       1001,
       {IntoBuffer(AdbGetPhoneProductModel), IntoBuffer(AdbGetDeviceCurrentTime),
        IntoBuffer(AdbGetFirstSDCardPath), HandingOut(AdbGetIPAddress, nullptr), ListingOf(AdbGetDirFiles),
        [](const char* serial) { return AdbPullFile(serial, "/sdcard/a", "/tmp/a", nullptr); },
        [](const char* serial) { return AdbRemoveFile(serial, "/sdcard/a", nullptr); },
        [](const char* serial) { return AdbReboot(serial, nullptr); }, file_size, is_rooted, is_installed}},
      {1001,
       1001,
       1001,
       {ListingOf(AdbGetDirFilesEx), ListingOf(AdbGetDirFilesAndDirs),
        HandingOut(AdbSearchSDCardPath, nullptr), HandingOut(AdbSearchExternalSDCardPath, nullptr),
        [](const char* serial) { return AdbCheckAppExist(serial, "com.example", 0, nullptr); },
        [](const char* serial) { return AdbUninstallApp(serial, "com.example", 0, nullptr); },
        [](const char* serial) { return AdbStartApp(serial, "a/.b", nullptr); },
        [](const char* serial) { return AdbFowardBind(serial, "0", "9"); },
        [](const char* serial) { return AdbReverseBind(serial, "9", "9"); }}},
      {ADB_RESULT_MIUI_VERSION_NAME_FAILED,
       ADB_RESULT_MIUI_VERSION_NAME_FAILED,
       ADB_RESULT_MIUI_VERSION_NAME_FAILED,
       {IntoBuffer(AdbGetMiuiVersion)}},
      {ADB_RESULT_NOT_FOUND, ADB_RESULT_NOT_FOUND, ADB_RESULT_NOT_FOUND, {[](const char* serial) {
         char* json = nullptr;
         int length = 0;
         const int code = AdbGetApkPathOfInstatlledEx(serial, "com.example", &json, &length, nullptr);
         AdbFreeResource(&json);
         return code;
       }}},
      // Last: it makes the device connect again.
      {ADB_RESULT_NO_DEVICE, ADB_RESULT_PROTOCOL_FAULT, ADB_RESULT_PROTOCOL_FAULT, {[](const char* serial) {
         return AdbAuthenticateShow(serial, nullptr);
       }}},
  };
}

class SdkNotReady : public testing::Test {
 protected:
  SdkNotReady() { setenv("ANDROID_ADB_SERVER_PORT", phones_.port().c_str(), 1); }

  // The code of the call, which is cancelled after a second.
  static int Cancelled(const std::function<int(const bool* cancel)>& call) {
    bool cancel = false;
    std::thread canceller([&cancel] {
      std::this_thread::sleep_for(std::chrono::seconds(1));
      __atomic_store_n(&cancel, true, __ATOMIC_RELAXED);
    });
    const auto start = std::chrono::steady_clock::now();
    const int code = call(&cancel);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(900)) << "did not wait";
    canceller.join();
    return code;
  }

  const SimulatedPhones phones_{{"UNAUTH1,state=unauthorized", "OFFLINE1,state=offline"}};
};

TEST_F(SdkNotReady, GivesTheCodesOfTheHeader) {
  int group = 0;
  for (const NotReady& codes : ByCodes()) {
    int number = 0;
    for (const auto& call : codes.calls) {
      EXPECT_EQ(call("ABSENT1"), codes.absent) << group << ", " << number;
      EXPECT_EQ(call("UNAUTH1"), codes.unauthorized) << group << ", " << number;
      EXPECT_EQ(call("OFFLINE1"), codes.offline) << group << ", " << number;
      ++number;
    }
    ++group;
  }
}

TEST_F(SdkNotReady, ClearingTheLogFailsAtOnceWithoutAdb) {
  if (!kDirect) GTEST_SKIP() << "adb waits";
  EXPECT_EQ(AdbClearLogcat("ABSENT1", nullptr), ADB_RESULT_NO_DEVICE);
  EXPECT_EQ(AdbClearLogcat("UNAUTH1", nullptr), ADB_RESULT_DEVICE_UNAUTHORIZED);
  EXPECT_EQ(AdbClearLogcat("OFFLINE1", nullptr), 1001);
}

TEST_F(SdkNotReady, ClearingTheLogWaitsUntilItIsCancelled) {
  if (kDirect) GTEST_SKIP() << "only adb waits";
  for (const char* serial : {"ABSENT1", "UNAUTH1", "OFFLINE1"}) {
    EXPECT_EQ(Cancelled([&](const bool* cancel) { return AdbClearLogcat(serial, cancel); }),
              ADB_CHANNEL_CANCELLED)
        << serial;
  }
}

TEST_F(SdkNotReady, AStreamOfTheLogWaitsUntilItIsCancelledOrFailsWithoutAdb) {
  struct Seen {
    std::string text;
    std::atomic<int> status{-1};
  } seen;
  const auto on_output = +[](void* context, const char* data, int length) {
    auto* const its = static_cast<Seen*>(context);
    if (data == nullptr) {
      its->status = length;
    } else {
      its->text.append(data, static_cast<size_t>(length));
    }
  };
  if (kDirect) {
    EXPECT_EQ(AdbLogcatAnsync("ABSENT1", "*:V", reinterpret_cast<void*>(on_output), &seen, nullptr), 0);
    EXPECT_TRUE(Eventually([&] { return seen.status == 1001; }));
    EXPECT_THAT(seen.text, HasSubstr("not found"));
    return;
  }
  EXPECT_EQ(Cancelled([&](const bool* cancel) {
              EXPECT_EQ(AdbLogcatAnsync("ABSENT1", "*:V", reinterpret_cast<void*>(on_output), &seen, cancel),
                        0);
              EXPECT_TRUE(Eventually([&] { return seen.status != -1; }));
              return seen.status.load();
            }),
            ADB_CHANNEL_CANCELLED);
  EXPECT_THAT(seen.text, HasSubstr("waiting for device"));
}

class SdkContract : public SdkOnPhone {
 protected:
  // Writes a file on the host, last modified at this second, and pushes it.
  std::string Pushed(const std::string& content, time_t modified) {
    const std::string file = OnHost("file");
    std::ofstream(file) << content;
    const utimbuf times{modified, modified};
    EXPECT_EQ(utime(file.c_str(), &times), 0);
    EXPECT_EQ(AdbPushFile(phone(), file.c_str(), OnPhone("file").c_str(), cancel_), kOk);
    return Text("cat " + OnPhone("file"));
  }

  std::string Listed(int (*list)(const char*, const char*, char**, int*, int, int, const bool*),
                     const std::string& folder, int code = kOk) {
    EXPECT_EQ(list(phone(), folder.c_str(), &text_, &length_, 0, 0, cancel_), code);
    return Taken(&text_, length_);
  }
};

TEST_P(SdkContract, APushSkipsAFileOfTheSameTimeOnly) {
  EXPECT_EQ(Pushed("first", 1'600'000'000), "first");
  EXPECT_EQ(Pushed("other and longer", 1'600'000'000), "first") << "same time";
  EXPECT_EQ(Pushed("an older file", 1'500'000'000), "an older file");
  EXPECT_EQ(Pushed("newer", 1'700'000'000), "newer");
}

TEST_P(SdkContract, AFolderIsPushedAndAPullOfItIsOneUnlessItHoldsOneFile) {
  const std::string folder = OnHost("folder");
  fs::create_directories(folder + "/sub");
  fs::create_directories(folder + "/empty");
  std::ofstream(folder + "/a") << "a";
  std::ofstream(folder + "/sub/b") << "b";
  EXPECT_EQ(AdbPushFile(phone(), folder.c_str(), OnPhone("folder").c_str(), cancel_), kOk);
  EXPECT_EQ(Text("cd " + OnPhone("folder") + "; cat a sub/b; ls"), "aba\nsub\n") << "no empty folder";

  EXPECT_EQ(AdbPullFile(phone(), OnPhone("folder").c_str(), OnHost("back").c_str(), cancel_), 1);
  EXPECT_TRUE(fs::exists(OnHost("back/sub/b")));
  EXPECT_EQ(AdbPullFile(phone(), OnPhone("folder/sub").c_str(), OnHost("one").c_str(), cancel_), kOk);
  EXPECT_TRUE(fs::exists(OnHost("one/b")));
}

TEST_P(SdkContract, TheListingOfALinkToAFolderNeedsASlash) {
  Shell("mkdir " + OnPhone("folder") + "; cd " + OnPhone("folder") +
        "; echo x > file.txt; echo y > other; ln -s " + OnPhone("folder") + " " + phone_folder() + "/link");
  const std::string link = phone_folder() + "/link";
  long long size = -1;
  EXPECT_THAT(Listed(AdbGetDirFiles, link), HasSubstr("\"file_count\" : 0"));
  EXPECT_EQ(AdbGetDirSize(phone(), link.c_str(), &size, cancel_), kOk);
  EXPECT_EQ(size, 0);
  EXPECT_THAT(Listed(AdbGetDirFiles, link + "/"), HasSubstr("/file.txt\""));
  EXPECT_EQ(AdbGetDirSize(phone(), (link + "/").c_str(), &size, cancel_), kOk);
  EXPECT_GT(size, 0);

  EXPECT_THAT(Listed(AdbGetDirFilesEx, link), HasSubstr("/file.txt\""));
  EXPECT_THAT(Listed(AdbGetDirFilesAndDirs, link), HasSubstr("/file.txt\""));
  EXPECT_EQ(AdbGetFilesBySuffix(phone(), link.c_str(), "txt", &text_, &length_, cancel_), kOk);
  EXPECT_THAT(Taken(&text_, length_), HasSubstr("/file.txt\""));
}

TEST_P(SdkContract, AListingOfOneLineIsEmpty) {
  REQUIRE_SIMULATED_PHONE("may print a total on any Android");
  Shell("mkdir " + OnPhone("folder") + "; echo x > " + OnPhone("folder/file.txt"));
  const std::string listing = Listed(AdbGetDirFiles, OnPhone("folder"));
  EXPECT_THAT(listing, HasSubstr(is_legacy() ? "\"file_count\" : 0" : "\"file_count\" : 1"));
  EXPECT_THAT(Listed(AdbGetDirFilesEx, OnPhone("folder")), HasSubstr("\"file_count\" : 1"));
}

TEST_P(SdkContract, AFolderThatMayNotBeReadIsEmpty) {
  REQUIRE_SIMULATED_PHONE("may let its shell read everything");
  const std::string locked = phone_folder() + "/locked";
  Shell("mkdir " + locked + "; echo x > " + locked + "/file.txt; chmod 000 " + locked);
  EXPECT_THAT(Listed(AdbGetDirFiles, locked), HasSubstr("\"file_count\" : 0"));
  EXPECT_THAT(Listed(AdbGetDirFilesEx, locked), HasSubstr("\"file_count\" : 0"));
  EXPECT_THAT(Listed(AdbGetDirFilesAndDirs, locked), Not(HasSubstr("File")));
  EXPECT_THAT(Listed(AdbGetDirFilesEx, phone_folder() + "/absent"), HasSubstr("\"file_count\" : 0"));
  EXPECT_EQ(Listed(AdbGetDirFiles, phone_folder() + "/absent", ADB_RESULT_NO_SUCH_FILE), "");
  Shell("chmod 700 " + locked);
}

INSTANTIATE_FOR_PHONES(SdkContract);

}  // namespace
}  // namespace darokleim::test

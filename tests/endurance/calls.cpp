#include "tests/endurance/calls.h"

#include <darokleim.h>

#include <atomic>
#include <chrono>
#include <iterator>
#include <mutex>
#include <thread>

namespace darokleim::endurance {
namespace {

constexpr int kCancelledByCaller = 3003;

class Block {
 public:
  Block() = default;
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  ~Block() { AdbFreeResource(&text_); }
  char** text() { return &text_; }
  int* length() { return &length_; }

 private:
  char* text_ = nullptr;
  int length_ = 0;
};

using TextFunction = int (*)(const char*, char*, int, const bool*);

template <TextFunction function>
int Text(const Place& place) {
  char text[256];
  return function(place.serial.c_str(), text, sizeof text, nullptr);
}

using FlagFunction = int (*)(const char*, bool*, const bool*);

template <FlagFunction function>
int Flag(const Place& place) {
  bool flag = false;
  return function(place.serial.c_str(), &flag, nullptr);
}

using ListFunction = int (*)(const char*, const char*, char**, int*, int, int, const bool*);

template <ListFunction function>
int List(const Place& place) {
  Block list;
  return function(place.serial.c_str(), place.device_folder.c_str(), list.text(), list.length(), 0, 1,
                  nullptr);
}

using FileNumberFunction = int (*)(const char*, const char*, unsigned long long*, const bool*);

template <FileNumberFunction function>
int FileNumber(const Place& place) {
  unsigned long long number = 0;
  return function(place.serial.c_str(), place.device_file.c_str(), &number, nullptr);
}

int Devices(const Place&) {
  Block list;
  return AdbGetDevicesEx(list.text(), list.length(), nullptr);
}

int DeviceThatIsNotThere(const Place&) {
  char text[256];
  return AdbGetPhoneProductModel("NOBODY", text, sizeof text, nullptr);
}

int CancelledCall(const Place& place) {
  static const bool cancelled = true;
  char text[256];
  return AdbGetPhoneProductModel(place.serial.c_str(), text, sizeof text, &cancelled);
}

int Exists(const Place& place) {
  bool exists = false;
  return AdbCheckFileExisted(place.serial.c_str(), place.device_file.c_str(), &exists, nullptr);
}

int CopyAndRemove(const Place& place) {
  const std::string copy = place.device_folder + "/copy " + std::to_string(place.thread);
  const int code = AdbCopyFile(place.serial.c_str(), place.device_file.c_str(), copy.c_str(), nullptr);
  return code != ADB_RESULT_OK ? code : AdbRemoveFile(place.serial.c_str(), copy.c_str(), nullptr);
}

int PushAndPull(const Place& place) {
  const std::string number = std::to_string(place.thread);
  const std::string there = place.device_folder + "/pushed " + number;
  const std::string back = place.host_file + " back " + number;
  const int code = AdbPushFile(place.serial.c_str(), place.host_file.c_str(), there.c_str(), nullptr);
  return code != ADB_RESULT_OK
             ? code
             : AdbPullFile(place.serial.c_str(), place.device_file.c_str(), back.c_str(), nullptr);
}

int FreeSpace(const Place& place) {
  unsigned long long bytes = 0;
  return AdbGetStorageFreeSpace(place.serial.c_str(), "/sdcard", &bytes, nullptr);
}

int Packages(const Place& place) {
  Block list;
  return AdbGetPackagesNameOfInstalled(place.serial.c_str(), "", list.text(), list.length(), nullptr);
}

int VersionOfNoPackage(const Place& place) {
  char version[256];
  return AdbGetAppVersion(place.serial.c_str(), "none.such", version, sizeof version, nullptr);
}

int Typed(const Place& place) {
  return AdbInputStringToDevice(place.serial.c_str(), "some text", nullptr);
}

}  // namespace

int FollowLog(const Place& place) {
  struct Watch {
    std::atomic<bool> ended = false;
  };
  Watch watch;
  bool cancel = false;
  const auto on_output = +[](void* context, const char* data, int) {
    if (data == nullptr) static_cast<Watch*>(context)->ended = true;
  };
  static std::mutex starting;  // the library starts one stream at a time
  const int code = [&] {
    const std::lock_guard lock(starting);
    return AdbLogcatAnsync(place.serial.c_str(), "", reinterpret_cast<void*>(on_output), &watch, &cancel);
  }();
  if (code != ADB_RESULT_OK) return code;
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
  while (!watch.ended) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return code;
}

const Call kCalls[] = {
    {"AdbGetDevicesEx", ADB_RESULT_OK, Devices},
    {"AdbGetPhoneProductModel", ADB_RESULT_OK, Text<AdbGetPhoneProductModel>},
    {"AdbGetPhoneManufacturer", ADB_RESULT_OK, Text<AdbGetPhoneManufacturer>},
    {"AdbGetPhoneSoftVersion", ADB_RESULT_OK, Text<AdbGetPhoneSoftVersion>},
    {"AdbGetDeviceCurrentTime", ADB_RESULT_OK, Text<AdbGetDeviceCurrentTime>},
    {"AdbCheckEncryptState", ADB_RESULT_OK, Flag<AdbCheckEncryptState>},
    {"AdbGetDirFiles", ADB_RESULT_OK, List<AdbGetDirFiles>},
    {"AdbGetFileSize", ADB_RESULT_OK, FileNumber<AdbGetFileSize>},
    {"AdbCheckFileExisted", ADB_RESULT_OK, Exists},
    {"AdbCopyFile", ADB_RESULT_OK, CopyAndRemove},
    {"AdbPushFile", ADB_RESULT_OK, PushAndPull},
    {"AdbGetStorageFreeSpace", ADB_RESULT_OK, FreeSpace},
    {"AdbGetPackagesNameOfInstalled", ADB_RESULT_OK, Packages},
    {"AdbGetAppVersion", ADB_RESULT_NOT_FOUND, VersionOfNoPackage},
    {"AdbInputStringToDevice", ADB_RESULT_OK, Typed},
    {"AdbGetPhoneProductModel of no phone", ADB_RESULT_NO_DEVICE, DeviceThatIsNotThere},
    {"AdbGetPhoneProductModel, cancelled", kCancelledByCaller, CancelledCall},
    {"AdbLogcatAnsync", ADB_RESULT_OK, FollowLog},
};
const std::size_t kCallCount = std::size(kCalls);

}  // namespace darokleim::endurance

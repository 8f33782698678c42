// Each allocation of each function fails in turn: std::bad_alloc leaves the function, and nothing leaks.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <ostream>
#include <string>
#include <vector>

#include "darokleim.h"
#include "src/platform/command_channel.h"
#include "src/platform/log_library.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::test {
namespace {

// What adb prints for every command; null for nothing at all.
const char* output = nullptr;
int buffers_out = 0;

}  // namespace
}  // namespace darokleim::test

using darokleim::test::buffers_out;
using darokleim::test::output;

// A channel and a log that never call operator new.
int ExecuteAdbCommandSynchronization(const char* /*args*/, const bool* /*cancel*/, char** out, int* out_len) {
  *out = nullptr;
  *out_len = 0;
  if (output == nullptr) return 0;
  ++buffers_out;
  *out = strdup(output);
  *out_len = static_cast<int>(strlen(output));
  return 0;
}

void ReleaseAdbOutBuffer(char* out) {
  if (out != nullptr) --buffers_out;
  std::free(out);
}

int ExecuteAdbCommandAnsynchronization(const char* /*args*/, const bool* /*cancel*/, void* /*context*/,
                                       void* /*on_output*/) {
  return 0;
}

int InitAdbCommuncation2Server(const char* /*adb_path*/, const char* /*log_dir*/,
                               const void* /*log_context*/) {
  return 0;
}

bool InitLogEx(const void* /*log_context*/, const char* /*module*/, const char* /*log_file_path*/) {
  return true;
}

void LogEx(const char* /*module*/, int /*level*/, const char* /*format*/, ...) {}

namespace darokleim::test {
namespace {

struct Call {
  std::string name;
  const char* output;
  std::function<void()> run;
  // 44 for a build date that cannot be composed, whatever the reason.
  bool has_a_code = false;

  friend void PrintTo(const Call& call, std::ostream* out) { *out << call.name; }
};

const bool cancel = false;
constexpr char kSerial[] = "a serial number of twenty-eight";
constexpr char kPath[] = "/sdcard/a path that no short string holds";
constexpr char kPackage[] = "com.example.an.application";
constexpr char kListing[] =
    "/sdcard/DCIM:\r\ntotal 8\r\n"
    "-rw-rw---- 1 root sdcard_rw 5 2020-01-02 03:04 a name that no short string holds.jpg\r\n"
    "drwxrwx--x 2 root sdcard_rw 4096 2020-01-02 03:04 a folder that no short string holds\r\n";
constexpr char kAdbListing[] =
    "000081b0 00000005 5e0d5b50 a name that no short string holds.jpg\n"
    "000041f9 00001000 5e0d5b50 .\n000041f9 00001000 5e0d5b50 ..\n";

// For functions that fill a buffer of the caller's.
template <typename Function>
std::function<void()> Filling(Function* function) {
  return [function] {
    char buffer[256];
    function(kSerial, buffer, sizeof buffer, &cancel);
  };
}

// For functions that hand out a block.
std::function<void()> HandingOut(const std::function<void(char** block, int* length)>& function) {
  return [function] {
    char* block = nullptr;
    int length = 0;
    function(&block, &length);
    AdbFreeResource(&block);
  };
}

// For functions that write one value.
template <typename Value>
std::function<void()> Telling(const std::function<void(Value* value)>& function) {
  return [function] {
    Value value = {};
    function(&value);
  };
}

std::vector<Call> DeviceCalls() {
  static constexpr char kDevices[] =
      "List of devices attached\n0123456789abcdef0123\tdevice\nX2\tunauthorized\n";
  static constexpr char kLine[] = "a property that no short string holds\r\n";
  return {
      {"AdbGetDevices", kDevices,
       [] {
         char buffer[256];
         AdbGetDevices(buffer, sizeof buffer, &cancel);
       }},
      {"AdbGetDevicesEx", kDevices, HandingOut([](char** b, int* n) { AdbGetDevicesEx(b, n, &cancel); })},
      {"AdbAuthenticateShow", "reconnecting", [] { AdbAuthenticateShow(kSerial, &cancel); }},
      {"AdbReconnectDevice", "", [] { AdbReconnectDevice(); }},
      {"AdbReboot", "", [] { AdbReboot(kSerial, &cancel); }},
      {"AdbGetPhoneManufacturer", kLine, Filling(AdbGetPhoneManufacturer)},
      {"AdbGetPhoneSoftVersion", kLine, Filling(AdbGetPhoneSoftVersion)},
      {"AdbGetPhoneProductModel", kLine, Filling(AdbGetPhoneProductModel)},
      {"AdbGetMiuiBuildRegin", kLine, Filling(AdbGetMiuiBuildRegin)},
      {"AdbGetMiuiVersion", "V11\r\n", Filling(AdbGetMiuiVersion), true},
      {"AdbGetMiuiVersion of twelve", "V125.0.1.2\r\n", Filling(AdbGetMiuiVersion)},
      {"AdbCheckLockedState", "1\r\n",
       Telling<bool>([](bool* v) { AdbCheckLockedState(kSerial, v, &cancel); })},
      {"AdbCheckEncryptState", "encrypted\r\n",
       Telling<bool>([](bool* v) { AdbCheckEncryptState(kSerial, v, &cancel); })},
      {"AdbGetEncryptType", "file\r\n", Telling<int>([](int* v) { AdbGetEncryptType(kSerial, v, &cancel); })},
      {"AdbCheckIsHarmony", "harmony\r\n",
       Telling<bool>([](bool* v) { AdbCheckIsHarmony(kSerial, v, &cancel); })},
      {"IsDeviceHadBeenRooted", "su\n",
       Telling<bool>([](bool* v) { IsDeviceHadBeenRooted(kSerial, v, &cancel); })},
      {"AdbGetIPAddress", "    inet 192.168.100.200/24 brd 192.168.100.255 scope global wlan0\n",
       HandingOut([](char** b, int* n) { AdbGetIPAddress(kSerial, b, n, &cancel); })},
      {"AdbGetDeviceCurrentTime", "2020-01-02 03:04:05\r\n", Filling(AdbGetDeviceCurrentTime)},
      {"GetPropInfo", kLine,
       [] {
         char* out = nullptr;
         int length = 0;
         GetPropInfo(kSerial, "ro.product.model", &out, &length, &cancel);
         ReleaseAdbOutBuffer(out);
       }},
      {"AdbStartDaemon", "", [] { AdbStartDaemon(false, &cancel); }},
      {"AdbStartDaemonEx", "", [] { AdbStartDaemonEx(false, &cancel); }},
      {"AdbConfigDeviceBusybox", "", [] { AdbConfigDeviceBusybox(kSerial, &cancel); }},
  };
}

std::vector<Call> FileCalls() {
  const auto listing = [](auto* function) {
    return HandingOut([function](char** b, int* n) { function(kSerial, kPath, b, n, 1, 1, &cancel); });
  };
  return {
      {"AdbPushFile", "1 file pushed.\n", [] { AdbPushFile(kSerial, kPath, kPath, &cancel); }},
      {"AdbPullFile", "1 file pulled.\n", [] { AdbPullFile(kSerial, kPath, kPath, &cancel); }},
      {"AdbCopyFile", "", [] { AdbCopyFile(kSerial, kPath, kPath, &cancel); }},
      {"AdbRemoveFile", "", [] { AdbRemoveFile(kSerial, kPath, &cancel); }},
      {"AdbRenameFile", "", [] { AdbRenameFile(kSerial, kPath, kPath, &cancel); }},
      {"AdbCreateDir", "", [] { AdbCreateDir(kSerial, kPath, &cancel); }},
      {"AdbChmodFile", "", [] { AdbChmodFile(kSerial, kPath, "0644", &cancel); }},
      {"AdbCheckFileExisted", "",
       Telling<bool>([](bool* v) { AdbCheckFileExisted(kSerial, kPath, v, &cancel); })},
      {"AdbCheckFileExistedUsingFolderContent", kAdbListing,
       Telling<bool>([](bool* v) { AdbCheckFileExistedUsingFolderContent(kSerial, kPath, v, &cancel); })},
      {"AdbGetFileSize", "  Size: 12345\tBlocks: 8\r\n",
       Telling<unsigned long long>([](auto* v) { AdbGetFileSize(kSerial, kPath, v, &cancel); })},
      {"AdbGetFileCreateTime", "1577934245\n",
       Telling<unsigned long long>([](auto* v) { AdbGetFileCreateTime(kSerial, kPath, v, &cancel); })},
      {"AdbGetFileCreateTimeFromLs", kAdbListing,
       Telling<unsigned long long>([](auto* v) { AdbGetFileCreateTimeFromLs(kSerial, kPath, v, &cancel); })},
      {"AdbScreencapToPC", "", [] { AdbScreencapToPC(kSerial, kPath, &cancel); }},
      {"AdbScreencapToDevice", "", [] { AdbScreencapToDevice(kSerial, kPath, &cancel); }},
      {"AdbGetDirFiles", kListing, listing(AdbGetDirFiles)},
      {"AdbGetDirFilesEx", kAdbListing, listing(AdbGetDirFilesEx)},
      {"AdbGetDirFilesAndDirs", kAdbListing, listing(AdbGetDirFilesAndDirs)},
      {"AdbGetFilesBySuffix", "/sdcard/a name that no short string holds.jpg\n",
       HandingOut([](char** b, int* n) { AdbGetFilesBySuffix(kSerial, kPath, "jpg;png", b, n, &cancel); })},
      {"AdbGetDirSize", "1234\t/sdcard\n",
       Telling<long long>([](auto* v) { AdbGetDirSize(kSerial, kPath, v, &cancel); })},
      {"AdbGetFirstSDCardPath", "/storage/emulated/0\n", Filling(AdbGetFirstSDCardPath)},
      {"AdbGetStorageFreeSpace", "Filesystem Size Used Free Blksize\n/data 10.5G 2.5G 8.0G 4096\n",
       Telling<unsigned long long>([](auto* v) { AdbGetStorageFreeSpace(kSerial, kPath, v, &cancel); })},
      {"AdbSearchSDCardPath",
       "drwxrwx--x root sdcard_rw 2020-01-02 03:04 a card that no short string holds\n",
       HandingOut([](char** b, int* n) { AdbSearchSDCardPath(kSerial, b, n, &cancel); })},
      {"AdbSearchExternalSDCardPath", "drwxrwx--x root sdcard_rw 2020-01-02 03:04 sdcard1\n",
       HandingOut([](char** b, int* n) { AdbSearchExternalSDCardPath(kSerial, b, n, &cancel); })},
  };
}

std::vector<Call> AppCalls() {
  static constexpr char kPackages[] =
      "package:com.example.an.application\npackage:com.example.another.application\n";
  static constexpr char kApk[] = "package:/data/app/com.example.an.application-1/base.apk\n";
  static constexpr char kFiles[] =
      R"({"path": ["/home/someone/a long path/base.apk", "/home/someone/a long path/split.apk"]})";
  return {
      {"AdbCheckAppInstalled", kPackages,
       Telling<bool>([](bool* v) { AdbCheckAppInstalled(kSerial, kPackage, v, &cancel); })},
      {"AdbGetPackagesNameOfInstalled", kPackages,
       HandingOut([](char** b, int* n) { AdbGetPackagesNameOfInstalled(kSerial, "-3", b, n, &cancel); })},
      {"AdbGetPackagesNameList", kPackages,
       HandingOut([](char** b, int* n) { AdbGetPackagesNameList(kSerial, "-3", b, n); })},
      {"AdbGetPackagesNameList of a refused user", "Shell does not have permission to access user 10\n",
       HandingOut([](char** b, int* n) { AdbGetPackagesNameList(kSerial, "-3", b, n); })},
      {"AdbGetApkPathOfInstatlled", kApk,
       [] {
         char buffer[256];
         AdbGetApkPathOfInstatlled(kSerial, kPackage, buffer, sizeof buffer, &cancel);
       }},
      {"AdbGetApkPathOfInstatlledEx", kApk,
       HandingOut([](char** b, int* n) { AdbGetApkPathOfInstatlledEx(kSerial, kPackage, b, n, &cancel); })},
      {"AdbGetAppVersion", "    versionName=1.2.3-a-version-that-no-short-string-holds\n",
       [] {
         char buffer[256];
         AdbGetAppVersion(kSerial, kPackage, buffer, sizeof buffer, &cancel);
       }},
      {"AdbInstallAppFromPCPath", "Success\n", [] { AdbInstallAppFromPCPath(kSerial, kPath, &cancel); }},
      {"AdbInstallAppFromPCPath without room", "Failure\n",
       [] { AdbInstallAppFromPCPath(kSerial, kPath, &cancel); }},
      {"AdbInstallAppFromDevicePath", "Success\n",
       [] { AdbInstallAppFromDevicePath(kSerial, kPath, &cancel); }},
      {"AdbInstallMultipleAppFromPCPath", "Success\n",
       [] { AdbInstallMultipleAppFromPCPath(kSerial, kFiles, &cancel); }},
      {"AdbCheckAppExist", kApk, [] { AdbCheckAppExist(kSerial, kPackage, 1, &cancel); }},
      {"AdbUninstallApp", "Success\n", [] { AdbUninstallApp(kSerial, kPackage, 1, &cancel); }},
      {"AdbBackupApp", "", [] { AdbBackupApp(kSerial, kPackage, kPath, &cancel); }},
      {"AdbRestoreApp", "", [] { AdbRestoreApp(kSerial, kPath, &cancel); }},
      {"AdbStopDeviceBackupRestoreProcess", "", [] { AdbStopDeviceBackupRestoreProcess(kSerial, &cancel); }},
      {"AdbClearLogcat", "", [] { AdbClearLogcat(kSerial, &cancel); }},
      {"AdbLogcatAnsync", "", [] { AdbLogcatAnsync(kSerial, "Tag:I *:S", nullptr, nullptr, &cancel); }},
      {"AdbStartApp", "Starting\n", [] { AdbStartApp(kSerial, "com.example/.Main", "--es key value"); }},
      {"AdbInputStringToDevice", "", [] { AdbInputStringToDevice(kSerial, "a text to type in", &cancel); }},
      {"AdbFowardBind", "", [] { AdbFowardBind(kSerial, "5000", "6000"); }},
      {"AdbFowardRemove", "", [] { AdbFowardRemove(kSerial, "5000"); }},
      {"AdbReverseBind", "", [] { AdbReverseBind(kSerial, "5000", "6000"); }},
      {"AdbReverseRemove", "", [] { AdbReverseRemove(kSerial, "5000"); }},
  };
}

std::vector<Call> AllCalls() {
  std::vector<Call> calls = DeviceCalls();
  for (const auto& more : {FileCalls(), AppCalls()}) calls.insert(calls.end(), more.begin(), more.end());
  return calls;
}

class MemoryTest : public ::testing::TestWithParam<Call> {
 protected:
  // Listings leave a copy in the working directory.
  MemoryTest() { EXPECT_EQ(chdir(directory_.path().c_str()), 0); }
  ~MemoryTest() override { EXPECT_EQ(chdir("/"), 0); }

 private:
  TemporaryDirectory directory_;
};

TEST_P(MemoryTest, RunsOut) {
  for (const char* answer : {GetParam().output, static_cast<const char*>(nullptr)}) {
    output = answer;
    GetParam().run();  // allocates what is kept for the process
    WithEachAllocationFailing([&](long number) {
      const long live = LiveAllocations();
      bool failed;
      bool thrown = false;
      {
        const FailingAllocation failing(number);
        try {
          GetParam().run();
        } catch (const std::bad_alloc&) {
          thrown = true;
        }
        failed = failing.HasFailed();
      }
      EXPECT_TRUE(thrown == failed || GetParam().has_a_code) << number;
      EXPECT_EQ(LiveAllocations(), live) << number;
      EXPECT_EQ(buffers_out, 0) << number;
      return failed;
    });
  }
}

INSTANTIATE_TEST_SUITE_P(OfEachFunction, MemoryTest, ::testing::ValuesIn(AllCalls()));

// A line, as often as an answer of four mebibytes holds it.
std::string LongAnswer(const std::string& line, const std::string& heading = "") {
  std::string answer = heading;
  while (answer.size() < 4 * 1024 * 1024) answer += line;
  return answer;
}

class LongAnswerTest : public MemoryTest {
 protected:
  // The most memory that a call takes beside the channel's own buffer, in lengths of the answer.
  static double MostHeld(const std::string& answer, const std::function<void()>& call) {
    output = answer.c_str();
    const MostBytesHeld most;
    call();
    return static_cast<double>(most.bytes()) / static_cast<double>(answer.size());
  }
};

constexpr double kOnce = 1.01;

TEST_F(LongAnswerTest, IsNotCopiedToBeLogged) {
  const std::string control_bytes = LongAnswer("\x01\x02 Error Failure\x1b");
  for (const auto& call : std::vector<std::function<void()>>{
           [] { AdbReboot(kSerial, &cancel); }, [] { AdbStartDaemon(false, &cancel); },
           [] { AdbStartApp(kSerial, kPackage, nullptr); }, [] { AdbFowardBind(kSerial, "1", "2"); },
           Telling<unsigned long long>([](auto* n) { AdbGetStorageFreeSpace(kSerial, kPath, n, &cancel); }),
           Filling(AdbGetPhoneProductModel)}) {
    EXPECT_LT(MostHeld(control_bytes, call), 0.01);
  }
  EXPECT_LT(MostHeld(control_bytes, Filling(AdbGetMiuiVersion)), 2 * kOnce)
      << "two properties, each copied once";
}

TEST_F(LongAnswerTest, IsHandedOutAsItsOnlyCopy) {
  const std::string packages = LongAnswer("package:" + std::string(kPackage) + "\r\n");
  EXPECT_LT(MostHeld(packages, HandingOut([](char** b, int* n) {
                       AdbGetPackagesNameOfInstalled(kSerial, "", b, n, &cancel);
                     })),
            kOnce);
  EXPECT_LT(MostHeld(packages,
                     HandingOut([](char** b, int* n) { AdbGetPackagesNameList(kSerial, nullptr, b, n); })),
            kOnce);
}

TEST_F(LongAnswerTest, IsGivenBackBeforeItsContentIsCopied) {
  const std::string name(250, 'n');
  const std::string devices = LongAnswer(name + "\tdevice\n");
  EXPECT_LT(MostHeld(devices, HandingOut([](char** b, int* n) { AdbGetDevicesEx(b, n, &cancel); })),
            2 * kOnce);
  // The files, then their document twice; each needs some memory besides the name.
  constexpr double kPerName = 1.6;
  EXPECT_LT(MostHeld(LongAnswer("/sdcard/" + name + "\n"), HandingOut([](char** b, int* n) {
                       AdbGetFilesBySuffix(kSerial, "/sdcard", "jpg", b, n, &cancel);
                     })),
            2 * kPerName);
  EXPECT_LT(
      MostHeld(LongAnswer("-rw-rw---- 1 root sdcard_rw 5 2020-01-02 03:04 " + name + "\r\n"),
               HandingOut([](char** b, int* n) { AdbGetDirFiles(kSerial, kPath, b, n, 1, 1, &cancel); })),
      2 * kPerName);
}

}  // namespace
}  // namespace darokleim::test

// An exported function returns every code of the table, for the text that adb or a device prints in that case.
#include <fstream>
#include <functional>
#include <iterator>
#include <ostream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

struct Outcome {
  int code;
  // What each command of the call prints.
  std::string output;
  std::function<int(const bool* cancel)> call;
  // The channel's status for each.
  int status = 0;
};

void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << outcome.code;
}

int Reboot(const bool* cancel) {
  return AdbReboot("S1", cancel);
}

int Install(const bool* cancel) {
  return AdbInstallAppFromPCPath("S1", "/a.apk", cancel);
}

int Remove(const bool* cancel) {
  return AdbRemoveFile("S1", "/sdcard/a", cancel);
}

int Copy(const bool* cancel) {
  return AdbCopyFile("S1", "/sdcard/a", "/sdcard/b", cancel);
}

template <typename Function>
auto IntoBuffer(Function* function, int capacity) {
  return [function, capacity](const bool* cancel) {
    char buffer[64];
    return function("S1", buffer, capacity, cancel);
  };
}

// For functions that hand out a block, also beside a failure.
template <typename Function>
auto HandingOut(Function function) {
  return [function](const bool* cancel) {
    char* block = nullptr;
    int length = 0;
    const int code = function(&block, &length, cancel);
    AdbFreeResource(&block);
    return code;
  };
}

const auto find_photos = HandingOut([](char** json, int* length, const bool* cancel) {
  return AdbGetFilesBySuffix("S1", "/sdcard", "jpg", json, length, cancel);
});

const auto ask_address = HandingOut([](char** address, int* length, const bool* cancel) {
  return AdbGetIPAddress("S1", address, length, cancel);
});

const auto find_apk = HandingOut([](char** json, int* length, const bool* cancel) {
  return AdbGetApkPathOfInstatlledEx("S1", "com.example", json, length, cancel);
});

const std::vector<Outcome>& Outcomes() {
  static const std::vector<Outcome> outcomes = {
      {ADB_RESULT_OK, "", Reboot},
      {ADB_RESULT_PROTOCOL_FAULT, "error: protocol fault (couldn't read status): Success", Reboot},
      {ADB_RESULT_JSON_PARSE_FAILED, "",
       [](const bool* cancel) { return AdbInstallMultipleAppFromPCPath("S1", "{", cancel); }},
      {ADB_RESULT_INVALID_PARAM, "", [](const bool* cancel) { return AdbReboot(nullptr, cancel); }},
      {ADB_RESULT_RESOURCE_INCOMPLETE, "",
       [](const bool* context) { return AdbSdkInit("/nowhere", context, "/logs"); }},
      {ADB_RESULT_BUFFER_TOO_SMALL, "cn\n", IntoBuffer(AdbGetMiuiBuildRegin, 1)},
      {ADB_RESULT_NO_DEVICE, "error: device 'S1' not found", Reboot},
      {ADB_RESULT_NO_SUCH_FILE, "rm: /sdcard/a: No such file or directory", Remove},
      {ADB_RESULT_UNKNOWN_HOST_SERVICE, "error: unknown host service", Reboot},
      {ADB_RESULT_CANNOT_CONNECT_DAEMON, "adb: cannot connect to daemon", Reboot},
      {ADB_RESULT_NOT_FOUND, "", find_apk},
      {ADB_RESULT_PERMISSION_DENIED, "find: '/sdcard/x': Permission denied", find_photos},
      {ADB_RESULT_NO_IP_ADDRESS, "lo UP 127.0.0.1/8", ask_address},
      {ADB_RESULT_FAILURE, "Failure [INSTALL_FAILED_INVALID_APK]", Install},
      {ADB_RESULT_INSTALL_ALREADY_EXISTS, "Failure [INSTALL_FAILED_ALREADY_EXISTS]", Install},
      {ADB_RESULT_INSTALL_FAILURE_99, "Failure [-99]", Install},
      {ADB_RESULT_INSTALL_VERSION_DOWNGRADE, "Failure [INSTALL_FAILED_VERSION_DOWNGRADE]", Install},
      {ADB_RESULT_INSTALL_USER_RESTRICTED, "Failure [INSTALL_FAILED_USER_RESTRICTED]", Install},
      {ADB_RESULT_INSTALL_NO_CERTIFICATES, "Failure [INSTALL_PARSE_FAILED_NO_CERTIFICATES]", Install},
      {ADB_RESULT_DAEMON_NOT_RUNNING, "* daemon still not running", Reboot},
      {ADB_RESULT_INSTALL_CANCELED_BY_USER,
       "Failure [INSTALL_FAILED_USER_RESTRICTED: Install canceled by user]", Install},
      {ADB_RESULT_INSTALL_CANCELLED_BY_USER, "Failure [INSTALL_FAILED_CANCELLED_BY_USER]", Install},
      {ADB_RESULT_NO_CLOSING_QUOTE, "/system/bin/sh: no closing quote", Remove},
      {ADB_RESULT_SHELL_NOT_FOUND, "/system/bin/sh: cp: not found", Copy},
      {ADB_RESULT_DEVICE_UNAUTHORIZED, "error: device unauthorized.", Reboot},
      {ADB_RESULT_NOT_ENOUGH_SPACE, "adb: failed to install /a.apk: not enough space", Install},
      {ADB_RESULT_MIUI_TIME_CODE_FAILED, "V11\n", IntoBuffer(AdbGetMiuiVersion, 64)},
      {ADB_RESULT_MIUI_VERSION_NAME_FAILED, "error: device 'S1' not found", IntoBuffer(AdbGetMiuiVersion, 64),
       1001},
      {ADB_RESULT_USER_ACCESS_DENIED, "Shell does not have permission to access user 10", Reboot},
      {ADB_RESULT_NO_SPACE_LEFT, "cp: /sdcard/b: No space left on device", Copy},
  };
  return outcomes;
}

class ResultCodeTest : public SdkTest, public ::testing::WithParamInterface<Outcome> {};

TEST_P(ResultCodeTest, ComesOutOfAFunction) {
  channel.Otherwise().Prints(GetParam().output).Returns(GetParam().status);
  EXPECT_EQ(GetParam().call(&cancel), GetParam().code);
}

INSTANTIATE_TEST_SUITE_P(Table, ResultCodeTest, ::testing::ValuesIn(Outcomes()),
                         [](const ::testing::TestParamInfo<Outcome>& row) {
                           return std::to_string(row.param.code);
                         });

TEST(ResultCodeTableTest, NamesNoCodeThatNothingReturns) {
  std::ifstream header(DAROKLEIM_PUBLIC_HEADER);
  const std::string text((std::istreambuf_iterator<char>(header)), {});
  const std::regex entry("ADB_RESULT_\\w+ = (\\d+)");
  std::set<int> named;
  for (std::sregex_iterator i(text.begin(), text.end(), entry), end; i != end; ++i)
    named.insert(std::stoi((*i)[1]));
  std::set<int> returned;
  for (const Outcome& outcome : Outcomes()) returned.insert(outcome.code);
  EXPECT_EQ(returned, named);
}

}  // namespace
}  // namespace darokleim::test

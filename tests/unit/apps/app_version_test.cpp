#include <iterator>
#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/refused_calls.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

class AppVersionTest : public SdkTest {
 protected:
  const std::string command = " -s S1 shell dumpsys package com.a ";

  // The code and, behind a blank, the version.
  std::string Version() {
    std::string buffer(2'000, '#');
    const int code = AdbGetAppVersion("S1", "com.a", buffer.data(), 0, &cancel);
    const std::string version = buffer.c_str();
    EXPECT_EQ(buffer.find_first_not_of('#', version.size() + 1), std::string::npos);
    return std::to_string(code) + " " + version;
  }
  std::string VersionIn(const std::string& dump, int status = 0) {
    channel.Expect(command).Prints(dump).Returns(status).Unterminated();
    return Version();
  }
};

TEST_F(AppVersionTest, IsTheFirstOneInTheDump) {
  EXPECT_EQ(VersionIn("Packages:\r\n    versionCode=7\r\n    versionName=1.2.3-beta\r\n"), "0 1.2.3");
  EXPECT_EQ(VersionIn("versionName=12.0.1.beta"), "0 12.0.1.");
  EXPECT_EQ(VersionIn("versionName=null\nversionName=2.0\nversionName=3.0\n"), "0 2.0");
  const std::string longest(1'500, '9');
  EXPECT_EQ(VersionIn("versionName=" + longest), "0 " + longest) << "the size of the buffer is not read";
}

TEST_F(AppVersionTest, LogsEnterAndLeave) {
  VersionIn("versionName=1\n");
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetAppVersion Enter."), Ran(command), GaveBack(),
                                     Info("AdbGetAppVersion Leave, return 0.")));
}

TEST_F(AppVersionTest, NoVersionIs28) {
  for (const char* dump : {"", "\n\n", "versionName=beta 1.0", "Unable to find package: com.a\n"}) {
    EXPECT_EQ(VersionIn(dump), "28 ") << dump;
  }
}

TEST_F(AppVersionTest, AFailureInTheDumpIsNoErrorSaveForOnePackage) {
  EXPECT_EQ(VersionIn("com.a.ShowFailure\nversionName=1.0\n"), "0 1.0");
  EXPECT_EQ(VersionIn("Failure\njp.naver.line.android\nversionName=1.0\n"), "0 1.0") << "two lines";
  EXPECT_EQ(VersionIn("jp.naver.line.android.Failure\nversionName=1.0\n"), "31 ");
  EXPECT_EQ(VersionIn("Failure\nno space: device unauthorized\n", 9), "9 ")
      << "behind it no later message is looked for";
}

TEST_F(AppVersionTest, OtherMessagesAreErrorsAsEverywhere) {
  EXPECT_EQ(VersionIn("versionName=1.0\nerror: device 'S1' not found", 1001), "24 ");
  EXPECT_EQ(VersionIn("versionName=1.0\nShell does not have permission to access user 0"), "46 ");
  EXPECT_EQ(VersionIn("versionName=1.0\n", 1001), "1001 ");
}

TEST_F(AppVersionTest, WithoutOutputTheChannelsValueIsTheCode) {
  for (const int value : {0, 3003}) {
    channel.Expect(command).Returns(value);
    EXPECT_EQ(Version(), std::to_string(value) + " ");
  }
}

TEST_F(AppVersionTest, RealDumps) {
  const struct {
    const char* sample;
    const char* expected;
  } dumps[] = {
      {"a12-block-versionname-null.txt", "28 "},   {"awesome-adb-weather.txt", "0 1.1.74"},
      {"grep-versionname-null.txt", "28 "},        {"lollipop-5.1-contacts.txt", "0 5.1"},
      {"oreo-stf-two-users.txt", "0 2.1.0"},       {"samsung-4.x-stf.txt", "0 2.1.0"},
      {"samsung-a40-10-packages.txt", "0 5.0.07"},
  };
  EXPECT_EQ(DeviceOutputsIn("dumpsys-package").size(), std::size(dumps));
  for (const auto& c : dumps) {
    EXPECT_EQ(VersionIn(DeviceOutput(std::string("dumpsys-package/") + c.sample)), c.expected) << c.sample;
  }
}

TEST_F(AppVersionTest, NullArgumentsAreRefused) {
  char buffer[] = "before";
  EXPECT_EQ(AdbGetAppVersion(nullptr, "com.a", buffer, 6, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetAppVersion("S1", nullptr, buffer, 6, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetAppVersion("S1", "com.a", nullptr, 6, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_STREQ(buffer, "before");
  EXPECT_EQ(journal(), RefusedCalls("AdbGetAppVersion", 3));
}

TEST_F(AppVersionTest, CommandsAreCutAt255CharactersTheBlankAtTheEndFirst) {
  const std::string head = " -s S1 shell dumpsys package ";
  for (const std::size_t length : {254U, 255U, 256U, 257U}) {
    const std::string package = std::string(length - head.size() - 2, 'p') + "$";
    const std::string whole = head + package + " ";
    char buffer[1];
    channel.Expect(whole.substr(0, 255)).Returns(7);
    EXPECT_EQ(AdbGetAppVersion("S1", package.c_str(), buffer, 1, &cancel), 7) << length;
  }
}

}  // namespace
}  // namespace darokleim::test

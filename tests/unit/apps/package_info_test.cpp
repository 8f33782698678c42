#include <cstring>
#include <iterator>
#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/refused_calls.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

class AppVersionTest : public SdkTest {
 protected:
  const std::string command = " -s S1 shell dumpsys package com.a ";

  // The code, a space and the version.
  std::string Version() {
    std::string buffer(5'000, '#');
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
  const std::string longest(4'095, '9');
  EXPECT_EQ(VersionIn("versionName=" + longest), "0 " + longest) << "the size of the buffer is not read";
}

TEST_F(AppVersionTest, NeverNeedsMoreThan4096Bytes) {
  const std::string fitting(4'095, '9');
  EXPECT_EQ(VersionIn("versionName=" + fitting + "9"), "8 " + fitting);
  EXPECT_EQ(VersionIn("versionName=" + std::string(100'000, '9')), "8 " + fitting);
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

TEST_F(AppVersionTest, AFailureInTheDumpIsAnErrorForOnePackageOnly) {
  EXPECT_EQ(VersionIn("com.a.ShowFailure\nversionName=1.0\n"), "0 1.0");
  EXPECT_EQ(VersionIn("Failure\njp.naver.line.android\nversionName=1.0\n"), "0 1.0") << "two lines";
  EXPECT_EQ(VersionIn("jp.naver.line.android.Failure\nversionName=1.0\n"), "31 ");
  EXPECT_EQ(VersionIn("Failure\nno space: device unauthorized\n", 9), "9 ")
      << "no later message is looked for";
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

TEST_F(AppVersionTest, CommandsAreCutAt255CharactersTheSpaceAtTheEndFirst) {
  const std::string head = " -s S1 shell dumpsys package ";
  for (const std::size_t length : {254U, 255U, 256U, 257U}) {
    const std::string package = std::string(length - head.size() - 2, 'p') + "$";
    const std::string whole = head + package + " ";
    char buffer[1];
    channel.Expect(whole.substr(0, 255)).Returns(7);
    EXPECT_EQ(AdbGetAppVersion("S1", package.c_str(), buffer, 1, &cancel), 7) << length;
  }
}

constexpr char kSplit[] = "package:/data/app/x/base.apk\r\npackage:/data/app/x/split_a.apk\r\n";
constexpr char kNone[] = "{\n   \"path\" : null\n}";

class ApkPathTest : public SdkTest {
 protected:
  const std::string command = " -s S1 shell pm path com.a";

  // The code, a space and the path.
  std::string Path() {
    std::string buffer(10'000, '#');
    const int code = AdbGetApkPathOfInstatlled("S1", "com.a", buffer.data(), -1, &cancel);
    const std::string path = buffer.c_str();
    EXPECT_EQ(buffer.find_first_not_of(std::string("#\0", 2), path.size()), std::string::npos);
    return std::to_string(code) + " " + path;
  }
  std::string PathIn(const std::string& output, int status = 0) {
    channel.Expect(command).Prints(output).Returns(status).Unterminated();
    return Path();
  }
};

TEST_F(ApkPathTest, IsTheFirstPathOfASplitPackage) {
  EXPECT_EQ(PathIn(kSplit), "0 /data/app/x/base.apk");
  EXPECT_EQ(PathIn("WARNING\npackage:\n\npackage:/b.apk"), "0 /b.apk");
  EXPECT_EQ(
      PathIn(DeviceOutput("pm-path/youtube-split4.txt")),
      "0 /data/app/~~JZJ7O-128UkMPyO4wEa5Iw==/com.google.android.youtube-S52tY5BXzpAY6gmZRGWKxA==/base.apk");
}

TEST_F(ApkPathTest, LogsEnterAndLeave) {
  PathIn(kSplit);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetApkPathOfInstatlled Enter."), Ran(command), GaveBack(),
                                     Info("AdbGetApkPathOfInstatlled Leave, return 0.")));
}

TEST_F(ApkPathTest, NothingFoundIs28) {
  for (const char* output : {"", "\n", "package:", "package:/a b.apk\n", "no line of a path"}) {
    EXPECT_EQ(PathIn(output), "28 ") << output;
  }
}

TEST_F(ApkPathTest, AMessageOrAValueOfTheChannelDecides) {
  EXPECT_EQ(PathIn("package:/a.apk\nerror: device 'S1' not found", 1001), "24 ");
  EXPECT_EQ(PathIn("package:/a.apk\n", 1001), "1001 ");
  EXPECT_EQ(PathIn("Shell does not have permission to access user 0"), "46 ") << "no second attempt here";
}

TEST_F(ApkPathTest, WithoutOutputTheChannelsValueIsTheCode) {
  for (const int value : {0, 3003}) {
    channel.Expect(command).Returns(value);
    EXPECT_EQ(Path(), std::to_string(value) + " ");
  }
}

TEST_F(ApkPathTest, ALongPathIsWrittenWhateverTheSizeSays) {
  const std::string path = "/" + std::string(4'094, 'p');
  EXPECT_EQ(PathIn("package:" + path + "\n"), "0 " + path);
}

TEST_F(ApkPathTest, NeverNeedsMoreThan4096Bytes) {
  const std::string fitting = "/" + std::string(4'094, 'p');
  EXPECT_EQ(PathIn("package:" + fitting + "p\n"), "8 " + fitting);
  EXPECT_EQ(PathIn("package:" + fitting + fitting), "8 " + fitting);
}

TEST_F(ApkPathTest, OnlyZerosFollowAZeroByte) {
  char buffer[] = "##########";
  channel.Expect(command).Prints("package:/a\0bcd\n"s);
  EXPECT_EQ(AdbGetApkPathOfInstatlled("S1", "com.a", buffer, 0, &cancel), ADB_RESULT_OK);
  EXPECT_EQ(std::string(buffer, sizeof buffer), "/a\0\0\0\0\0###\0"s);
}

TEST_F(ApkPathTest, NullArgumentsAreRefused) {
  char buffer[] = "before";
  EXPECT_EQ(AdbGetApkPathOfInstatlled(nullptr, "com.a", buffer, 6, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetApkPathOfInstatlled("S1", nullptr, buffer, 6, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetApkPathOfInstatlled("S1", "com.a", nullptr, 6, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_STREQ(buffer, "before");
  EXPECT_EQ(journal(), RefusedCalls("AdbGetApkPathOfInstatlled", 3));
}

TEST_F(ApkPathTest, CommandsAreCutAt255Characters) {
  const std::string head = " -s S1 shell pm path ";
  for (const std::size_t length : {254U, 255U, 256U}) {
    const std::string whole = head + std::string(length - head.size() - 1, 'p') + "$";
    char buffer[1];
    char* json = nullptr;
    int json_len = 0;
    channel.Expect(whole.substr(0, 255)).Returns(7);
    EXPECT_EQ(AdbGetApkPathOfInstatlled("S1", whole.c_str() + head.size(), buffer, 1, &cancel), 7);
    channel.Expect(whole.substr(0, 255)).Returns(7);
    EXPECT_EQ(AdbGetApkPathOfInstatlledEx("S1", whole.c_str() + head.size(), &json, &json_len, &cancel), 7);
  }
}

class ApkPathsTest : public SdkTest {
 protected:
  const std::string command = " -s S1 shell pm path com.a";

  // The code, a space and the document.
  std::string PathsIn(const std::string& output, int status = 0) {
    char* json = nullptr;
    int json_len = -1;
    channel.Expect(command).Prints(output).Returns(status).Unterminated();
    const int code = AdbGetApkPathOfInstatlledEx("S1", "com.a", &json, &json_len, &cancel);
    if (!json) return std::to_string(code);
    EXPECT_EQ(json_len, static_cast<int>(std::strlen(json)) + 1) << "the terminating zero counts";
    const std::string document = json;
    AdbFreeResource(&json);
    return std::to_string(code) + " " + document;
  }
};

TEST_F(ApkPathsTest, AreAllPathsInOrder) {
  EXPECT_EQ(PathsIn(kSplit),
            "0 {\n   \"path\" : [ \"/data/app/x/base.apk\", \"/data/app/x/split_a.apk\" ]\n}");
  EXPECT_EQ(PathsIn("x\npackage:/b\npackage:/a b\npackage:/a\npackage:/b"),
            "0 {\n   \"path\" : [ \"/b\", \"/a\", \"/b\" ]\n}");
}

TEST_F(ApkPathsTest, OfARealPackage) {
  const std::string directory =
      "/data/app/~~JZJ7O-128UkMPyO4wEa5Iw==/com.google.android.youtube-S52tY5BXzpAY6gmZRGWKxA==/";
  EXPECT_EQ(PathsIn(DeviceOutput("pm-path/youtube-split4.txt")),
            "0 {\n   \"path\" : \n   [\n      \"" + directory + "base.apk\",\n      \"" + directory +
                "split_config.arm64_v8a.apk\",\n      \"" + directory + "split_config.en.apk\",\n      \"" +
                directory + "split_config.xxhdpi.apk\"\n   ]\n}");
  EXPECT_EQ(DeviceOutputsIn("pm-path").size(), 1U);
}

TEST_F(ApkPathsTest, OtherBytesAreWrittenAsTheWriterDoes) {
  EXPECT_EQ(PathsIn("package:/\"\\\0\xe6\xb7\xbb\xff\n"s),
            "0 {\n   \"path\" : [ \"/\\\"\\\\\\u0000\\u6dfb\\ufffd\" ]\n}");
}

TEST_F(ApkPathsTest, NothingFoundIs28WithADocument) {
  for (const char* output : {"", "\n", "package:", "no line of a path"}) {
    EXPECT_EQ(PathsIn(output), "28 "s + kNone) << output;
  }
}

TEST_F(ApkPathsTest, EveryFailureBecomes28WithADocument) {
  EXPECT_EQ(PathsIn("package:/a.apk\nerror: device 'S1' not found", 1001), "28 "s + kNone);
  EXPECT_EQ(PathsIn("package:/a.apk\n", 1001), "28 "s + kNone);
  EXPECT_EQ(PathsIn("Failure"), "28 "s + kNone);
}

TEST_F(ApkPathsTest, WithoutOutputTheChannelsValueIsTheCodeAndNothingIsWritten) {
  char untouched[] = "before";
  for (const int value : {0, 3003}) {
    char* json = untouched;
    int json_len = -7;
    channel.Expect(command).Returns(value);
    EXPECT_EQ(AdbGetApkPathOfInstatlledEx("S1", "com.a", &json, &json_len, &cancel), value);
    EXPECT_EQ(json, untouched);
    EXPECT_EQ(json_len, -7);
  }
}

TEST_F(ApkPathsTest, LogsEnterAndLeave) {
  PathsIn("");
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetApkPathOfInstatlledEx Enter."), Ran(command), GaveBack(),
                                     Info("AdbGetApkPathOfInstatlledEx Leave, return 28.")));
}

TEST_F(ApkPathsTest, ANullSerialOrPackageIsRefused) {
  char* json = nullptr;
  int json_len = 0;
  EXPECT_EQ(AdbGetApkPathOfInstatlledEx(nullptr, "com.a", &json, &json_len, &cancel),
            ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetApkPathOfInstatlledEx("S1", nullptr, &json, &json_len, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(json, nullptr);
  EXPECT_EQ(journal(), RefusedCalls("AdbGetApkPathOfInstatlledEx", 2));
}

}  // namespace
}  // namespace darokleim::test

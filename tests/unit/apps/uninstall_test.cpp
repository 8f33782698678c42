// AdbUninstallApp and AdbCheckAppExist, which differ in one word.
#include <iterator>
#include <ostream>
#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

struct Question {
  const char* name;
  int (*function)(const char* serial, const char* package, int flag, const bool* cancel);
  const char* command;
};

void PrintTo(const Question& question, std::ostream* out) {
  *out << question.name;
}

const Question kQuestions[] = {{"AdbCheckAppExist", AdbCheckAppExist, " -s S1 shell pm path"},
                               {"AdbUninstallApp", AdbUninstallApp, " -s S1 shell pm uninstall"}};

class UninstallTest : public SdkTest, public ::testing::WithParamInterface<Question> {
 protected:
  int Call(int flag = 0, const std::string& package = "com.a") {
    return GetParam().function("S1", package.c_str(), flag, &cancel);
  }
  const std::string command = GetParam().command;
  const std::string plain = command + " com.a";
};

TEST_P(UninstallTest, RunsThePlainCommandWithoutTheFlag) {
  channel.Expect(plain).Prints("Success\n");
  EXPECT_EQ(Call(), ADB_RESULT_OK);
  const std::string name = GetParam().name;
  EXPECT_THAT(journal(),
              ElementsAre(Info(name + " Enter."), Ran(plain), GaveBack(), Info(name + " Leave, return 0.")));
}

TEST_P(UninstallTest, AnyFlagButZeroAddsTheOption) {
  for (const int flag : {1, 2, -1}) {
    channel.Expect(command + " -k com.a").Prints("Success\n");
    EXPECT_EQ(Call(flag), ADB_RESULT_OK);
  }
}

TEST_P(UninstallTest, SuccessInTheTextWinsOverAnyMessage) {
  channel.Expect(plain).Prints("Failure of something\nSuccess\n");
  EXPECT_EQ(Call(), ADB_RESULT_OK);
  EXPECT_EQ(log_lines().size(), 2U) << "messages are not looked for";
}

TEST_P(UninstallTest, AValueOfTheChannelWinsOverTheText) {
  for (const char* output : {"Success\n", "Failure\n", "error: device 'S1' not found", ""}) {
    channel.Expect(plain).Prints(output).Returns(1001);
    EXPECT_EQ(Call(), 1001) << output;
  }
  EXPECT_EQ(log_lines().size(), 8U) << "only enter and leave lines";
}

TEST_P(UninstallTest, OtherTextsAreClassified) {
  channel.Expect(plain).Prints("Failure [DELETE_FAILED_INTERNAL_ERROR]\n");
  EXPECT_EQ(Call(), ADB_RESULT_FAILURE);
  channel.Expect(plain).Prints("error: device 'S1' not found");
  EXPECT_EQ(Call(), ADB_RESULT_NO_DEVICE);
  for (const char* output : {"", "package:/data/app/base.apk\n", "success"}) {
    channel.Expect(plain).Prints(output);
    EXPECT_EQ(Call(), ADB_RESULT_OK) << "nothing known: " << output;
  }
}

TEST_P(UninstallTest, WithoutOutputTheChannelsValueIsTheCode) {
  for (const int value : {0, 3003}) {
    channel.Expect(plain).Returns(value);
    EXPECT_EQ(Call(), value);
  }
}

TEST_P(UninstallTest, CommandsAreCutAt127Characters) {
  for (const char* option : {" ", " -k "}) {
    const std::string head = command + option;
    for (const std::size_t length : {126U, 127U, 128U, 200U}) {
      const std::string whole = head + std::string(length - head.size() - 1, 'p') + "$";
      channel.Expect(whole.substr(0, 127)).Returns(7);
      EXPECT_EQ(Call(option == " -k "s, whole.substr(head.size())), 7) << length;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Both, UninstallTest, ::testing::ValuesIn(kQuestions),
                         [](const auto& question) { return question.param.name; });

class UninstallOutputTest : public SdkTest {};

TEST_F(UninstallOutputTest, RealOutputs) {
  const struct {
    const char* sample;
    int code;
  } outputs[] = {
      {"adbkit-not-installed-weird-crlf.txt", ADB_RESULT_FAILURE},
      {"adbkit-unknown-package.txt", ADB_RESULT_OK},  // the text of an exception is not a known message
      {"device-policy.txt", ADB_RESULT_FAILURE},
      {"internal-error.txt", ADB_RESULT_FAILURE},
      {"not-installed-for-0.txt", ADB_RESULT_FAILURE},
      {"success.txt", ADB_RESULT_OK},
  };
  EXPECT_EQ(DeviceOutputsIn("pm-uninstall").size(), std::size(outputs));
  for (const auto& c : outputs) {
    channel.Expect(" -s S1 shell pm uninstall com.a").Prints(DeviceOutput("pm-uninstall/"s + c.sample));
    EXPECT_EQ(AdbUninstallApp("S1", "com.a", 0, &cancel), c.code) << c.sample;
  }
  channel.Expect(" -s S1 shell pm path com.a").Prints(DeviceOutput("pm-path/youtube-split4.txt"));
  EXPECT_EQ(AdbCheckAppExist("S1", "com.a", 0, &cancel), ADB_RESULT_OK);
}

}  // namespace
}  // namespace darokleim::test

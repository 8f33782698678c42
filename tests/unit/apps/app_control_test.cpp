#include <iterator>
#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/refused_calls.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

class StartAppTest : public SdkTest {
 protected:
  const std::string command = "-s S1 shell am start -n com.a/.Main";

  int Start() { return AdbStartApp("S1", "com.a/.Main", nullptr); }
  int StartWith(const std::string& output) {
    channel.Expect(command).Prints(output).Uncancellable();
    return Start();
  }
};

TEST_F(StartAppTest, WithoutExtrasTheCommandEndsAtTheComponent) {
  EXPECT_EQ(StartWith("Starting: Intent { cmp=com.a/.Main }\n"), ADB_RESULT_OK);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbStartApp Enter ..."), Ran(command), GaveBack(),
                                     Info("AdbStartApp Leave 0.")));
}

TEST_F(StartAppTest, ExtrasFollowTheComponent) {
  channel.Expect(command + " -a android.intent.action.VIEW").Prints("Starting").Uncancellable();
  EXPECT_EQ(AdbStartApp("S1", "com.a/.Main", "-a android.intent.action.VIEW"), ADB_RESULT_OK);
  channel.Expect(command + " ").Prints("Starting").Uncancellable();
  EXPECT_EQ(AdbStartApp("S1", "com.a/.Main", ""), ADB_RESULT_OK);
}

TEST_F(StartAppTest, AnErrorInTheOutputIsOneAndLogged) {
  EXPECT_EQ(StartWith("Error type 3\n"), 1);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbStartApp Enter ..."), Ran(command),
                                     Error("AdbStartApp Execute Command Failed. Output = Error type 3\n"),
                                     GaveBack(), Info("AdbStartApp Leave 1.")));
  EXPECT_EQ(StartWith("xErrorx"), 1);
  EXPECT_EQ(StartWith("a\0Error"s), 1);
}

TEST_F(StartAppTest, OnlyThatWordCounts) {
  for (const char* output : {"", "error: device 'S1' not found", "ERROR", "Failure", "Warning: E r r o r"}) {
    EXPECT_EQ(StartWith(output), ADB_RESULT_OK) << output;
  }
}

TEST_F(StartAppTest, NoOutputIsOneWithANullText) {
  channel.Expect(command).Uncancellable();
  EXPECT_EQ(Start(), 1);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbStartApp Enter ..."), Ran(command),
                                     Error("AdbStartApp Execute Command Failed. Output = (null)"),
                                     Info("AdbStartApp Leave 1.")));
}

TEST_F(StartAppTest, AValueOfTheChannelWinsOverTheText) {
  channel.Expect(command).Returns(3002).Uncancellable();
  EXPECT_EQ(Start(), 3002);
  channel.Expect(command).Prints("Error type 3").Returns(-5).Uncancellable();
  EXPECT_EQ(Start(), -5);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbStartApp Enter ..."), Ran(command),
                                     Error("AdbStartApp Execute Command Failed. Error = 3002"),
                                     Info("AdbStartApp Leave 3002."), Info("AdbStartApp Enter ..."),
                                     Ran(command), Error("AdbStartApp Execute Command Failed. Error = -5"),
                                     GaveBack(), Info("AdbStartApp Leave -5.")));
}

TEST_F(StartAppTest, NullTextsAreRefusedWithALeaveLine) {
  EXPECT_EQ(AdbStartApp(nullptr, "com.a/.Main", "x"), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbStartApp("S1", nullptr, "x"), ADB_RESULT_INVALID_PARAM);
  const Event enter = Info("AdbStartApp Enter ...");
  const Event invalid = Error("AdbStartApp Param is Invalid");
  const Event leave = Info("AdbStartApp Leave 4.");
  EXPECT_THAT(journal(), ElementsAre(enter, invalid, leave, enter, invalid, leave));
}

TEST_F(StartAppTest, CommandsAreCutAt511Characters) {
  for (const std::size_t length : {510U, 511U, 512U, 2000U}) {
    const std::string extras = std::string(length - command.size() - 2, 'e') + "$";
    channel.Expect((command + " " + extras).substr(0, 511)).Returns(7).Uncancellable();
    EXPECT_EQ(AdbStartApp("S1", "com.a/.Main", extras.c_str()), 7) << length;
    const std::string head = "-s S1 shell am start -n ";
    const std::string component = std::string(length - head.size() - 1, 'c') + "$";
    channel.Expect((head + component).substr(0, 511)).Returns(7).Uncancellable();
    EXPECT_EQ(AdbStartApp("S1", component.c_str(), nullptr), 7) << length;
  }
}

TEST_F(StartAppTest, RealOutputs) {
  const struct {
    const char* sample;
    int code;
  } outputs[] = {
      {"brought-to-front-only.txt", 0}, {"error-type-3-atak.txt", 1}, {"error-type-3-only-stderr.txt", 1},
      {"hot-warning-W.txt", 0},         {"no-permission.txt", 1},     {"view-intent-starting.txt", 0}};
  EXPECT_EQ(DeviceOutputsIn("am-start").size(), std::size(outputs));
  for (const auto& c : outputs)
    EXPECT_EQ(StartWith(DeviceOutput("am-start/"s + c.sample)), c.code) << c.sample;
}

class InputTextTest : public SdkTest {};

TEST_F(InputTextTest, IsOneCommand) {
  const std::string command = " -s S1 shell input text \"hello\"";
  channel.Expect(command).Prints("");
  EXPECT_EQ(AdbInputStringToDevice("S1", "hello", &cancel), ADB_RESULT_OK);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbInputStringToDevice Enter."), Ran(command), GaveBack(),
                                     Info("AdbInputStringToDevice Leave, return 0.")));
  channel.Expect(command).Prints("/system/bin/sh: no closing quote").Returns(1001);
  EXPECT_EQ(AdbInputStringToDevice("S1", "hello", &cancel), ADB_RESULT_NO_CLOSING_QUOTE);
  channel.Expect(command).Prints("Failure");
  EXPECT_EQ(AdbInputStringToDevice("S1", "hello", &cancel), ADB_RESULT_FAILURE);
  for (const int value : {0, 3003}) {
    channel.Expect(command).Returns(value);
    EXPECT_EQ(AdbInputStringToDevice("S1", "hello", &cancel), value);
  }
}

TEST_F(InputTextTest, NothingIsEscapedAndNothingCut) {
  for (const std::string& text :
       {"a b"s, "say \"hi\""s, "%s %d $HOME `x` \\ '"s, ""s, "\xff\n"s, std::string(100'000, 't')}) {
    channel.Expect(" -s S1 shell input text \"" + text + "\"").Prints("");
    EXPECT_EQ(AdbInputStringToDevice("S1", text.c_str(), &cancel), ADB_RESULT_OK);
  }
}

TEST_F(InputTextTest, NullTextsAreRefused) {
  EXPECT_EQ(AdbInputStringToDevice(nullptr, "hello", &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbInputStringToDevice("S1", nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(journal(), RefusedCalls("AdbInputStringToDevice", 2));
}

}  // namespace
}  // namespace darokleim::test

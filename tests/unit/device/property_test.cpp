#include "src/device/property.h"

#include <climits>
#include <string>

#include "src/core/argument_text.h"
#include "src/platform/command_channel.h"
#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

class GetPropInfoTest : public SdkTest {
 protected:
  // What GetPropInfo hands out, "null" for nothing; the buffer is given back.
  std::string Text(int expected_code) {
    char* text = nullptr;
    int length = 0;
    EXPECT_EQ(GetPropInfo("S1", "ro.x", &text, &length, &cancel), expected_code);
    if (!text) return "null";
    const std::string copy(text, static_cast<std::size_t>(length));
    EXPECT_EQ(text[length], '\0');
    ReleaseAdbOutBuffer(text);
    return copy;
  }
};

TEST_F(GetPropInfoTest, LeavesTheBufferToTheCallerAndLogsNothing) {
  channel.Expect(" -s S1 shell getprop ro.x").Prints("value\r\n");
  char* text = nullptr;
  int length = 0;
  EXPECT_EQ(GetPropInfo("S1", "ro.x", &text, &length, &cancel), ADB_RESULT_OK);
  EXPECT_THAT(journal(), ElementsAre(Ran(" -s S1 shell getprop ro.x")));
  EXPECT_STREQ(text, "value\r\n");
  EXPECT_EQ(length, 7);
  ReleaseAdbOutBuffer(text);
}

TEST_F(GetPropInfoTest, TheTextOfASuccessIsNotLookedAt) {
  for (const char* text : {"", "\n", "error: device unauthorized.\n", "Failure\n"}) {
    channel.Expect(" -s S1 shell getprop ro.x").Prints(text);
    EXPECT_EQ(Text(ADB_RESULT_OK), text);
  }
  for (const std::string& sample : DeviceOutputsIn("getprop")) {
    channel.Expect(" -s S1 shell getprop ro.x").Prints(DeviceOutput(sample));
    EXPECT_EQ(Text(ADB_RESULT_OK), DeviceOutput(sample)) << sample;
  }
}

TEST_F(GetPropInfoTest, AFailureIsClassified) {
  channel.Expect(" -s S1 shell getprop ro.x").Prints("error: device 'S1' not found\n").Returns(1001);
  EXPECT_EQ(Text(ADB_RESULT_NO_DEVICE), "error: device 'S1' not found\n");
  channel.Expect(" -s S1 shell getprop ro.x").Prints("odd\n").Returns(1001);
  EXPECT_EQ(Text(1001), "odd\n");
  channel.Expect(" -s S1 shell getprop ro.x").Prints("").Returns(7);
  EXPECT_EQ(Text(7), "");
  EXPECT_THAT(log_lines(), ElementsAre(Error("ret is 1001,outbuf is:error: device 'S1' not found\n"),
                                       Error("ret is 1001,outbuf is:odd\n"), Error("ret is 7,outbuf is:")));
}

TEST_F(GetPropInfoTest, WithoutABufferTheChannelsValueIsTheCode) {
  for (const int value : {0, 1, 24, 3003, -1, INT_MIN}) {
    channel.Expect(" -s S1 shell getprop ro.x").Returns(value);
    EXPECT_EQ(Text(value), "null");
  }
  EXPECT_THAT(log_lines(), IsEmpty());
}

TEST_F(GetPropInfoTest, WithoutAPlaceForTheTextTheChannelsValueIsTheCode) {
  for (const int value : {0, 7, 1001}) {
    int length = 0;
    channel.Expect(" -s S1 shell getprop ro.x").Prints("error: device 'S1' not found\n").Returns(value);
    EXPECT_EQ(GetPropInfo("S1", "ro.x", nullptr, &length, &cancel), value);
  }
  EXPECT_THAT(log_lines(), IsEmpty());
}

TEST_F(GetPropInfoTest, TheRefusalOfARealShell) {
  channel.Expect(" -s S1 shell getprop ro.x")
      .Prints(DeviceOutput("getprop/harmony-next-refused.txt"))
      .Returns(1);
  EXPECT_EQ(Text(ADB_RESULT_SHELL_NOT_FOUND), DeviceOutput("getprop/harmony-next-refused.txt"));
}

TEST_F(GetPropInfoTest, TheCommandIsCutAt255Characters) {
  const std::string whole = " -s S1 shell getprop ";
  for (const std::size_t length : {254U, 255U, 256U, 300U, 1'000'000U}) {
    const std::string name(length - whole.size(), 'n');
    channel.Expect((whole + name).substr(0, 255));
    char* text = nullptr;
    int text_length = 0;
    EXPECT_EQ(GetPropInfo("S1", name.c_str(), &text, &text_length, &cancel), ADB_RESULT_OK) << length;
  }
}

TEST_F(GetPropInfoTest, NothingIsQuoted) {
  channel.Expect(" -s a b$%s shell getprop ro.x;reboot");
  char* text = nullptr;
  int length = 0;
  EXPECT_EQ(GetPropInfo("a b$%s", "ro.x;reboot", &text, &length, &cancel), ADB_RESULT_OK);
}

TEST_F(GetPropInfoTest, ThePropertyGivesItsBufferBack) {
  channel.Expect(" -s S1 shell getprop ro.x").Prints("a\0b\n"s);
  {
    const sdk::Property property("S1", "ro.x", &cancel);
    EXPECT_EQ(property.code(), ADB_RESULT_OK);
    EXPECT_TRUE(property.has_value());
    EXPECT_EQ(property.value(), "a\0b\n"s);
    EXPECT_EQ(property.c_value(), "a");
  }
  EXPECT_EQ(journal().back(), GaveBack());
}

TEST_F(GetPropInfoTest, ThePropertyHasNoValueAfterAFailure) {
  channel.Expect(" -s S1 shell getprop ro.x").Prints("1\n").Returns(1001);
  const sdk::Property failed("S1", "ro.x", &cancel);
  EXPECT_FALSE(failed.has_value());
  EXPECT_EQ(failed.value(), "");
  EXPECT_EQ(failed.c_value(), "");
  EXPECT_EQ(failed.code(), 1001);
  channel.Expect(" -s S1 shell getprop ro.x");
  const sdk::Property absent("S1", "ro.x", &cancel);
  EXPECT_FALSE(absent.has_value());
  EXPECT_EQ(absent.code(), ADB_RESULT_OK);
}

}  // namespace
}  // namespace darokleim::test

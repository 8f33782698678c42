#include <ostream>
#include <stdexcept>
#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

struct Reader {
  std::string function;
  std::string property;
  int (*read)(const char* serial, char* buffer, int buffer_size, const bool* cancel);

  friend void PrintTo(const Reader& reader, std::ostream* out) { *out << reader.function; }
};

class PropertyTextTest : public SdkTest, public ::testing::WithParamInterface<Reader> {
 protected:
  const std::string& function = GetParam().function;
  const std::string command = " -s S1 shell getprop " + GetParam().property;
};

INSTANTIATE_TEST_SUITE_P(
    , PropertyTextTest,
    ::testing::Values(Reader{"AdbGetPhoneManufacturer", "ro.product.manufacturer", AdbGetPhoneManufacturer},
                      Reader{"AdbGetPhoneSoftVersion", "ro.build.version.release", AdbGetPhoneSoftVersion},
                      Reader{"AdbGetPhoneProductModel", "ro.product.model", AdbGetPhoneProductModel},
                      Reader{"AdbGetMiuiBuildRegin", "ro.miui.build.region", AdbGetMiuiBuildRegin}),
    [](const auto& instance) { return instance.param.function; });

TEST_P(PropertyTextTest, ReadsOneProperty) {
  char buffer[64];
  channel.Expect(command).Prints("Xiaomi 13\n");
  EXPECT_EQ(GetParam().read("S1", buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
  EXPECT_STREQ(buffer, "Xiaomi 13");
  EXPECT_THAT(journal(), ElementsAre(Info(function + " Enter."), Ran(command), GaveBack(),
                                     Info(function + " Leave, return 0.")));
}

TEST_P(PropertyTextTest, BothLineBreaks) {
  for (const char* value : {"eu\n", "eu\r\n", "eu", "eu \t\r\n\n"}) {
    char buffer[64];
    channel.Expect(command).Prints(value);
    EXPECT_EQ(GetParam().read("S1", buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
    EXPECT_STREQ(buffer, "eu");
  }
}

TEST_P(PropertyTextTest, ANullTextIsRefused) {
  char buffer[] = "before";
  EXPECT_EQ(GetParam().read(nullptr, buffer, sizeof buffer, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(GetParam().read("S1", nullptr, 7, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_STREQ(buffer, "before");
  EXPECT_THAT(journal(), ElementsAre(Info(function + " Enter."), Error(function + ", invalid param."),
                                     Info(function + " Enter."), Error(function + ", invalid param.")));
}

TEST_P(PropertyTextTest, AroundTheSizeOfTheBuffer) {
  const struct {
    int size;
    int code;
    const char* text;
  } cases[] = {{8, ADB_RESULT_OK, "Pixel"},
               {7, ADB_RESULT_OK, "Pixel"},
               {6, ADB_RESULT_OK, "Pixel"},  // as long as the value with its line break
               {5, ADB_RESULT_BUFFER_TOO_SMALL, "Pixe"},
               {2, ADB_RESULT_BUFFER_TOO_SMALL, "P"},
               {1, ADB_RESULT_BUFFER_TOO_SMALL, ""}};
  for (const auto& c : cases) {
    std::string buffer(20, '#');
    channel.Expect(command).Prints("Pixel\n");
    EXPECT_EQ(GetParam().read("S1", buffer.data(), c.size, &cancel), c.code) << c.size;
    EXPECT_STREQ(buffer.c_str(), c.text) << c.size;
    EXPECT_EQ(buffer.substr(static_cast<std::size_t>(c.size)),
              std::string(20 - static_cast<std::size_t>(c.size), '#'));
    EXPECT_EQ(journal().back(), Info(function + " Leave, return " + std::to_string(c.code) + "."));
  }
}

TEST_P(PropertyTextTest, ABufferWithoutRoomIsLeftAlone) {
  for (const int size : {0, -1}) {
    char buffer[] = "before";
    channel.Expect(command).Prints("Pixel\n");
    EXPECT_EQ(GetParam().read("S1", buffer, size, &cancel), ADB_RESULT_BUFFER_TOO_SMALL);
    EXPECT_STREQ(buffer, "before");
  }
}

TEST_P(PropertyTextTest, APropertyThatTheDeviceDoesNotHaveIsEmpty) {
  for (const char* value : {"\n", "\r\n", ""}) {
    char buffer[] = "before";
    channel.Expect(command).Prints(value);
    EXPECT_EQ(GetParam().read("S1", buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
    EXPECT_STREQ(buffer, "");
  }
}

TEST_P(PropertyTextTest, AFailureLeavesTheBuffer) {
  char buffer[] = "before";
  const std::string text = "error: device unauthorized.\n";
  channel.Expect(command).Prints(text).Returns(1001);
  EXPECT_EQ(GetParam().read("S1", buffer, sizeof buffer, &cancel), ADB_RESULT_DEVICE_UNAUTHORIZED);
  EXPECT_STREQ(buffer, "before");
  EXPECT_THAT(journal(),
              ElementsAre(Info(function + " Enter."), Ran(command), Error("ret is 1001,outbuf is:" + text),
                          GaveBack(), Info(function + " Leave, return 42.")));
}

TEST_P(PropertyTextTest, WithoutOutputTheChannelsValueIsTheCode) {
  for (const int value : {0, 3001, 3003}) {
    char buffer[] = "before";
    channel.Expect(command).Returns(value);
    EXPECT_EQ(GetParam().read("S1", buffer, sizeof buffer, &cancel), value);
    EXPECT_STREQ(buffer, "before");
  }
}

TEST_P(PropertyTextTest, AMessageInAValueIsAValue) {
  char buffer[64];
  channel.Expect(command).Prints("device not found\n");
  EXPECT_EQ(GetParam().read("S1", buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
  EXPECT_STREQ(buffer, "device not found");
}

TEST_P(PropertyTextTest, BytesAndLengthsDoNotMatter) {
  std::string buffer(1'000'002, '#');
  const std::string million(1'000'000, 'x');
  channel.Expect(command).Prints(million + "\n").Unterminated();
  EXPECT_EQ(GetParam().read("S1", buffer.data(), 1'000'002, &cancel), ADB_RESULT_OK);
  EXPECT_EQ(buffer.c_str(), million);
  channel.Expect(command).Prints("J\xab\xe2 a\0b\n"s);
  EXPECT_EQ(GetParam().read("S1", buffer.data(), 100, &cancel), ADB_RESULT_OK);
  EXPECT_EQ(buffer.substr(0, 10), "J\xab\xe2 a\0b\0\0x"s);
}

TEST_P(PropertyTextTest, ALengthThatIsNotTheTextsIsTheLength) {
  char buffer[64];
  channel.Expect(command).Prints("Pixel 7\n").Claims(5);
  EXPECT_EQ(GetParam().read("S1", buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
  EXPECT_STREQ(buffer, "Pixel");
  channel.Expect(command).Prints("Pixel 7\n").Claims(0);
  EXPECT_EQ(GetParam().read("S1", buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
  EXPECT_STREQ(buffer, "");
}

TEST_P(PropertyTextTest, ALengthWithoutATextIsNotAText) {
  char buffer[] = "before";
  for (const int value : {0, 1001}) {
    channel.Expect(command).Claims(5).Returns(value);
    EXPECT_EQ(GetParam().read("S1", buffer, sizeof buffer, &cancel), value);
    EXPECT_STREQ(buffer, "before");
  }
}

TEST_P(PropertyTextTest, ALengthBelowZeroLeavesAsAnExceptionAndKeepsNoBuffer) {
  char buffer[] = "before";
  channel.Expect(command).Prints("Pixel 7\n").Claims(-1);
  EXPECT_THROW(GetParam().read("S1", buffer, sizeof buffer, &cancel), std::length_error);
  EXPECT_STREQ(buffer, "before");
  EXPECT_EQ(journal().back(), GaveBack());
}

// A notice of adb around the value stays: it cannot be distinguished from the value.
TEST_P(PropertyTextTest, ARealTextOfThreeLines) {
  char buffer[128];
  channel.Expect(command).Prints(DeviceOutput("getprop/daemon-notice-around-value.txt"));
  EXPECT_EQ(GetParam().read("S1", buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
  EXPECT_STREQ(buffer,
               "* daemon not running; starting now at tcp:5037\n8.0.0\n* daemon started successfully");
}

class RealPropertyTextTest : public SdkTest {};

// Of one property each; no list holds a maker.
TEST_F(RealPropertyTextTest, AsTheyAreListed) {
  const struct {
    int (*read)(const char* serial, char* buffer, int buffer_size, const bool* cancel);
    std::string property;
    std::string list;
    std::string text;
  } cases[] = {
      {AdbGetPhoneSoftVersion, "ro.build.version.release", "getprop/huawei-matepad-emui14.txt", "12"},
      {AdbGetPhoneProductModel, "ro.product.model", "getprop/huawei-matepad-emui14.txt", "WGR-W09"},
      {AdbGetMiuiBuildRegin, "ro.miui.build.region", "getprop/miui13.txt", "cn"},
  };
  for (const auto& c : cases) {
    for (const char* line_end : {"\n", "\r\n"}) {
      char buffer[64];
      channel.Expect(" -s S1 shell getprop " + c.property)
          .Prints(DeviceProperty(c.list, c.property) + line_end);
      EXPECT_EQ(c.read("S1", buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
      EXPECT_EQ(buffer, c.text);
    }
  }
}

}  // namespace
}  // namespace darokleim::test

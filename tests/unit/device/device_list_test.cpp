#include "src/device/device_list.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <map>
#include <random>
#include <regex>
#include <string>

#include "tests/support/sanitizers.h"
#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace sdk;
using namespace std::string_literals;

TEST(ConnectionWordTest, HasWordsForTwoStatesAndTakesTheRestAsAuthorised) {
  EXPECT_EQ(convert_connect_string("unauthorized"), "unauthor");
  EXPECT_EQ(convert_connect_string("offline"), "offline");
  for (const std::string& state :
       {"device"s, ""s, "Unauthorized"s, "unauthorized "s, " offline"s, "OFFLINE"s, "recovery"s,
        "unauthorized\0"s, "unauthor"s, "\xff\xfe"s, std::string(1'000'000, 'o')}) {
    EXPECT_EQ(convert_connect_string(state), "author") << state.substr(0, 20);
  }
}

std::string Matched(std::string_view line) {
  const auto device = MatchDeviceLine(line);
  return device ? std::string(device->serial) + "|" + std::string(device->state) : "none";
}

TEST(DeviceLineTest, SerialAndState) {
  EXPECT_EQ(Matched("0123456789ABCDEF\tdevice"), "0123456789ABCDEF|device");
  EXPECT_EQ(Matched("a  offline"), "a|offline");
  EXPECT_EQ(Matched("AZaz09\tdevice"), "AZaz09|device");
  EXPECT_EQ(Matched("abc \t\v\f\r unauthorized"), "abc|unauthorized");
}

TEST(DeviceLineTest, EverythingElseIsNotADevice) {
  for (const char* line : {"",
                           " ",
                           "device",
                           "List of devices attached",
                           "List of devices attached ",
                           "abc\tdevice ",
                           "abc\tdevice\r",
                           " abc\tdevice",
                           "abcdevice",
                           "192.168.1.5:5555\tdevice",
                           "emulator-5554\tdevice",
                           "abc\trecovery",
                           "abc\tauthorizing",
                           "abc\tno permissions",
                           "abc\tDevice",
                           "abc\tdevices",
                           "abc\tdevice product:x",
                           "????????????\tno permissions",
                           "(no serial number)\tdevice",
                           "adb-X-y._adb-tls-connect._tcp\tdevice",
                           "\xe6\xb7\xbb\tdevice",
                           "* daemon started successfully"}) {
    EXPECT_EQ(Matched(line), "none") << line;
  }
}

TEST(DeviceLineTest, IsTheExpressionForAnyBytes) {
  const std::regex expression("^([a-zA-Z0-9]+)\\s+(\\b(device|offline|unauthorized)\\b)$");
  const std::string pieces[] = {"A",       "z9",
                                "0",       "-",
                                ".",       ":",
                                "_",       " ",
                                "\t",      "\n",
                                "\r",      "\v",
                                "\f",      "\x1c",
                                "\x85",    "\xa0",
                                "\xff",    "device",
                                "offline", "unauthorized",
                                "dev",     std::string(1, '\0')};
  std::mt19937 random(1);
  int matches = 0;
  constexpr int kLines = InputsToCompare(300'000);
  for (int i = 0; i < kLines; ++i) {
    std::string line;
    for (std::size_t n = random() % 6; n > 0; --n) line += pieces[random() % std::size(pieces)];
    std::smatch groups;
    const std::string expected =
        std::regex_match(line, groups, expression) ? groups[1].str() + "|" + groups[2].str() : "none";
    matches += expected != "none";
    ASSERT_EQ(Matched(line), expected) << line;
  }
  EXPECT_GT(matches, kLines / 300);
}

TEST(DeviceLineTest, ALineOfAMillionCharacters) {
  const std::string serial(1'000'000, 'S');
  EXPECT_EQ(Matched(serial + "\tdevice"), serial + "|device");
}

class DeviceListTest : public SdkTest {
 protected:
  // What AdbGetDevicesEx hands out, or "null".
  std::string ListEx(int expected_code = ADB_RESULT_OK) {
    char unset = 'x';
    char* list = &unset;
    int length = -1;
    EXPECT_EQ(AdbGetDevicesEx(&list, &length, &cancel), expected_code);
    if (!list) {
      EXPECT_EQ(length, 0);
      return "null";
    }
    EXPECT_EQ(length, static_cast<int>(std::strlen(list)) + 1);
    std::string text = list;
    AdbFreeResource(&list);
    return text;
  }
};

TEST_F(DeviceListTest, EntriesAreInTheOrderOfTheLines) {
  const std::string listing = "List of devices attached\nB1\tdevice\nA2\toffline\n\nC3\tunauthorized\n\n";
  char buffer[64];
  channel.Expect(" devices").Prints(listing);
  EXPECT_EQ(AdbGetDevices(buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
  EXPECT_STREQ(buffer, "B1-device;A2-offline;C3-unauthorized;");
  channel.Expect(" devices").Prints(listing);
  EXPECT_EQ(ListEx(), "B1-device;A2-offline;C3-unauthorized;");
  EXPECT_THAT(journal(), ElementsAre(Trace("AdbGetDevices Enter."), Ran(" devices"), GaveBack(),
                                     Trace("AdbGetDevices Leave ..."), Trace("AdbGetDevicesEx Enter."),
                                     Ran(" devices"), GaveBack(), Trace("AdbGetDevicesEx Leave ...")));
}

TEST_F(DeviceListTest, OneDeviceOfKnownLength) {
  channel.Expect(" devices").Prints("List of devices attached\nABC\tdevice\n\n");
  char* list = nullptr;
  int length = 0;
  EXPECT_EQ(AdbGetDevicesEx(&list, &length, &cancel), ADB_RESULT_OK);
  EXPECT_EQ(length, 12);
  EXPECT_STREQ(list, "ABC-device;");
  AdbFreeResource(&list);
}

TEST_F(DeviceListTest, ANullBufferIsRefused) {
  EXPECT_EQ(AdbGetDevices(nullptr, 10, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_THAT(journal(), ElementsAre(Trace("AdbGetDevices Enter."), Error("AdbGetDevices, invalid param.")));
}

TEST_F(DeviceListTest, WithoutADeviceTheOutputsAreUntouched) {
  for (const char* listing : {"List of devices attached\n\n", "", "\n\n", "x"}) {
    char buffer[] = "before";
    channel.Expect(" devices").Prints(listing);
    EXPECT_EQ(AdbGetDevices(buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
    EXPECT_STREQ(buffer, "before");
    channel.Expect(" devices").Prints(listing);
    EXPECT_EQ(ListEx(), "null");
  }
}

TEST_F(DeviceListTest, WithoutOutputTheChannelsValueIsTheCode) {
  for (const int value : {0, 3001, 1001}) {
    char buffer[] = "before";
    channel.Expect(" devices").Returns(value);
    EXPECT_EQ(AdbGetDevices(buffer, sizeof buffer, &cancel), value);
    EXPECT_STREQ(buffer, "before");
    channel.Expect(" devices").Returns(value);
    EXPECT_EQ(ListEx(value), "null");
  }
  EXPECT_EQ(journal().size(), 18U) << "enter, run and leave each time, nothing to release";
  EXPECT_EQ(journal().back(), Trace("AdbGetDevicesEx Leave ..."));
}

TEST_F(DeviceListTest, AKnownErrorIsTheCode) {
  char buffer[] = "before";
  const std::string text = "* cannot start server\nerror: cannot connect to daemon\nA\tdevice\n";
  channel.Expect(" devices").Prints(text).Returns(1001);
  EXPECT_EQ(AdbGetDevices(buffer, sizeof buffer, &cancel), ADB_RESULT_CANNOT_CONNECT_DAEMON);
  EXPECT_STREQ(buffer, "before");
  channel.Expect(" devices").Prints(text);
  EXPECT_EQ(ListEx(ADB_RESULT_CANNOT_CONNECT_DAEMON), "null");
  EXPECT_THAT(journal(), ElementsAre(Trace("AdbGetDevices Enter."), Ran(" devices"),
                                     Error("ret is 1001,outbuf is:" + text), GaveBack(),
                                     Trace("AdbGetDevices Leave ..."), Trace("AdbGetDevicesEx Enter."),
                                     Ran(" devices"), GaveBack(), Trace("AdbGetDevicesEx Leave ...")));
}

TEST_F(DeviceListTest, AnotherChannelValueKeepsTheListFromTheCaller) {
  channel.Expect(" devices").Prints("A\tdevice\n").Returns(5);
  EXPECT_EQ(ListEx(5), "null");
}

TEST_F(DeviceListTest, AnEntryThatDoesNotFitIsCutAndEndsTheList) {
  // "AAAAAAA-device;" has 15 characters, "B-offline;" 10.
  const std::string listing = "AAAAAAA\tdevice\nB\toffline\nC\tdevice\n";
  const struct {
    int size;
    const char* expected;
  } cases[] = {{10, "AAAAAAA-d"},
               {1, ""},
               {2, "A"},
               {15, "AAAAAAA-device"},
               {16, "AAAAAAA-device;"},
               {17, "AAAAAAA-device;B"},
               {25, "AAAAAAA-device;B-offline"},
               {26, "AAAAAAA-device;B-offline;"},
               {27, "AAAAAAA-device;B-offline;C"},
               {100, "AAAAAAA-device;B-offline;C-device;"}};
  for (const auto& c : cases) {
    std::string buffer(101, '#');
    channel.Expect(" devices").Prints(listing);
    EXPECT_EQ(AdbGetDevices(buffer.data(), c.size, &cancel), ADB_RESULT_OK) << c.size;
    EXPECT_STREQ(buffer.c_str(), c.expected) << c.size;
    EXPECT_EQ(buffer.find_first_not_of('#', std::strlen(c.expected) + 1), std::string::npos)
        << "written past the terminating zero: " << c.size;
  }
}

TEST_F(DeviceListTest, ABufferWithoutRoomIsLeftAlone) {
  for (const int size : {0, -1, -1000}) {
    char buffer[] = "before";
    channel.Expect(" devices").Prints("A\tdevice\n");
    EXPECT_EQ(AdbGetDevices(buffer, size, &cancel), ADB_RESULT_OK);
    EXPECT_STREQ(buffer, "before");
  }
}

TEST_F(DeviceListTest, TheListEndsAtAZeroByte) {
  char buffer[64];
  channel.Expect(" devices").Prints("A\tdevice\nB\tdev\0ice\nC\tdevice\n"s);
  EXPECT_EQ(AdbGetDevices(buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
  EXPECT_STREQ(buffer, "A-device;");
  channel.Expect(" devices").Prints("A\tdevice\nB\tdevice\0\nC\tdevice\n"s);
  EXPECT_EQ(ListEx(), "A-device;B-device;");
}

TEST_F(DeviceListTest, ALineThatIsCutInTheMiddle) {
  const std::string listing = "List of devices attached\nA1\tdevice\nB2\tunauthorized";
  const std::map<std::size_t, std::string> changes = {
      {0, "null"}, {34, "A1-device;"}, {50, "A1-device;B2-unauthorized;"}};
  // At every place, the outcome is that of the last change before it.
  ASSERT_EQ(listing.substr(0, 34), "List of devices attached\nA1\tdevice");
  for (std::size_t length = 0; length <= listing.size(); ++length) {
    channel.Expect(" devices").Prints(listing.substr(0, length));
    const std::string expected = std::prev(changes.upper_bound(length))->second;
    EXPECT_EQ(ListEx(), expected) << length;
  }
}

TEST_F(DeviceListTest, ALengthThatIsNotTheTextsIsNeverExceeded) {
  char buffer[64] = "before";
  const std::string listing = "A\tdevice\nB\tdevice\n";
  channel.Expect(" devices").Prints(listing).Claims(0);
  EXPECT_EQ(AdbGetDevices(buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
  EXPECT_STREQ(buffer, "before");
  channel.Expect(" devices").Prints(listing).Claims(12);
  EXPECT_EQ(AdbGetDevices(buffer, sizeof buffer, &cancel), ADB_RESULT_OK);
  EXPECT_STREQ(buffer, "A-device;");
  channel.Expect(" devices").Claims(12);
  EXPECT_EQ(ListEx(), "null") << "a length without a text";
}

TEST_F(DeviceListTest, TenThousandDevices) {
  std::string listing = "List of devices attached\n";
  std::string expected;
  for (int i = 0; i < 10'000; ++i) {
    listing += "S" + std::to_string(i) + "\tdevice\n";
    expected += "S" + std::to_string(i) + "-device;";
  }
  char small[10];
  channel.Expect(" devices").Prints(listing);
  EXPECT_EQ(AdbGetDevices(small, sizeof small, &cancel), ADB_RESULT_OK);
  EXPECT_STREQ(small, "S0-device");
  channel.Expect(" devices").Prints(listing);
  EXPECT_EQ(ListEx(), expected);
}

TEST_F(DeviceListTest, ASerialOfAMillionCharacters) {
  const std::string serial(1'000'000, 'S');
  channel.Expect(" devices").Prints(serial + "\tdevice\n");
  EXPECT_EQ(ListEx(), serial + "-device;");
}

// What is listed of each real output. Serials of emulators, of network devices and with extra columns
// (devices -l) are never listed.
TEST_F(DeviceListTest, RealOutputs) {
  const std::map<std::string, std::string> listed = {
      {"awesome-adb-three", "cf264b8f-device;"},
      {"docker-lineageos43-daemon-unauthorized", "0a1b2c3d-unauthorized;"},
      {"one-device-miui", "643fa0f6-device;"},
      {"out-of-date-then-list", "e70a976b-device;"},
      {"unauthorized-and-mixed-android-studio", "R32C801BL5K-device;0079864fd1d150fd-unauthorized;"},
      {"usb-and-tcp", "nvmvsct46hor4xts-device;"},
  };
  const std::map<std::string, int> refused = {
      {"header-then-daemon-failed", ADB_RESULT_CANNOT_CONNECT_DAEMON},
      {"rover-l-daemon-failed-before-header", ADB_RESULT_CANNOT_CONNECT_DAEMON},
      {"version-mismatch-fails", ADB_RESULT_CANNOT_CONNECT_DAEMON},
  };
  std::size_t met = 0;
  for (const std::string& sample : DeviceOutputsIn("adb-devices")) {
    const std::string name = sample.substr(12, sample.size() - 16);
    const bool is_listed = listed.count(name) > 0;
    const bool is_refused = refused.count(name) > 0;
    met += is_listed || is_refused;
    SCOPED_TRACE(name);
    channel.Expect(" devices").Prints(DeviceOutput(sample));
    EXPECT_EQ(ListEx(is_refused ? refused.at(name) : static_cast<int>(ADB_RESULT_OK)),
              is_listed ? listed.at(name) : "null");
  }
  EXPECT_EQ(met, listed.size() + refused.size());
}

}  // namespace
}  // namespace darokleim::test

#include <cstdlib>
#include <ctime>
#include <string>
#include <utility>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

class MiuiBuildDateTest : public SdkTest {
 protected:
  // What is appended to "x", or "refused".
  std::string Appended(const std::string& time_code) {
    std::string version = "x";
    if (!AppendMiuiVersionByTimeCode(time_code, version)) return "refused";
    EXPECT_EQ(version[0], 'x');
    return version.substr(1);
  }
};

TEST_F(MiuiBuildDateTest, TheDayIsOneMore) {
  EXPECT_EQ(Appended("1583366400"), "10.3.6") << "2020-03-05";
  EXPECT_EQ(Appended("1584230400"), "10.3.16") << "2020-03-15";
  EXPECT_EQ(Appended("1482336000"), "6.12.22") << "2016-12-21";
  EXPECT_EQ(Appended("1577836799"), "9.12.32") << "2019-12-31 23:59:59, whose day has no tomorrow";
  EXPECT_EQ(Appended("1577836800"), "10.1.2") << "2020-01-01";
  EXPECT_EQ(Appended("1582934400"), "10.2.30") << "2020-02-29";
  EXPECT_EQ(Appended("0"), "-40.1.2") << "1970-01-01";
  EXPECT_EQ(Appended("4102444800"), "90.1.2") << "2100-01-01";
}

TEST_F(MiuiBuildDateTest, TheHostsTimeZoneMakesNoDifference) {
  for (const char* zone : {"Pacific/Kiritimati", "Pacific/Pago_Pago", "UTC+12", "UTC-14"}) {
    setenv("TZ", zone, 1);
    tzset();
    EXPECT_EQ(Appended("1583366400"), "10.3.6") << zone;
    EXPECT_EQ(Appended("1583452799"), "10.3.6") << zone;
  }
  unsetenv("TZ");
  tzset();
}

TEST_F(MiuiBuildDateTest, LogsBothTexts) {
  std::string version = "12.";
  EXPECT_TRUE(AppendMiuiVersionByTimeCode("1583366400", version));
  EXPECT_EQ(version, "12.10.3.6");
  EXPECT_THAT(journal(),
              ElementsAre(Info("AppendMiuiVersionByTimeCode Enter.With time code:1583366400"),
                          Info("AppendMiuiVersionByTimeCode Leave.With version output:12.10.3.6")));
}

TEST_F(MiuiBuildDateTest, LeadingWhiteSpaceAndWhatFollowsTheDigitsAreIgnored) {
  for (const std::string& time_code :
       {" \t\n\v\f\r1583366400"s, "1583366400\r\n"s, "1583366400\n"s, "1583366400abc"s, "+1583366400"s,
        "001583366400"s, "1583366400.9"s, "1583366400\0001"s}) {
    EXPECT_EQ(Appended(time_code), "10.3.6") << time_code;
  }
}

TEST_F(MiuiBuildDateTest, WhatIsNotATimeIsRefused) {
  for (const std::string& time_code :
       {""s, "\n"s, "abc"s, "V12"s, "-"s, "+"s, ".5"s, "\0001583366400"s, "\xff\xfe"s,
        std::string(40, '9'),            // not an unsigned number
        std::string(1'000'000, '9'),     // neither is this
        "18446744073709551616"s,         // 2^64
        "18446744073709551615"s, "-1"s,  // a number of seconds that no clock counts
        "9223372036854775808"s,          // one second after the last
        "9223372036854775807"s,          // the last, in a year that no calendar holds
        "67768036191676800"s}) {         // the first second of year 2147485548
    const Journal before = journal();
    EXPECT_EQ(Appended(time_code), "refused") << time_code.substr(0, 50);
    ASSERT_EQ(journal().size(), before.size() + 2);
    EXPECT_EQ(journal().back().level, 3);
    EXPECT_EQ(journal().back().text.substr(0, 44), "AppendMiuiVersionByTimeCode Exception Catch:")
        << time_code;
    EXPECT_GT(journal().back().text.size(), 44U);
  }
}

TEST_F(MiuiBuildDateTest, TheLastYearThatACalendarHolds) {
  EXPECT_EQ(Appended("67768036191676799"), "2147483537.12.32");
}

constexpr char kName[] = " -s S1 shell getprop ro.miui.ui.version.name";
constexpr char kTimeCode[] = " -s S1 shell getprop ro.miui.version.code_time";
constexpr char kIncremental[] = " -s S1 shell getprop ro.build.version.incremental";

class MiuiVersionTest : public SdkTest {
 protected:
  std::string Version(int size, int expected_code) {
    std::string buffer(200, '#');
    EXPECT_EQ(AdbGetMiuiVersion("S1", buffer.data(), size, &cancel), expected_code);
    EXPECT_EQ(journal().back(),
              Info("AdbGetMiuiVersion Leave, return " + std::to_string(expected_code) + "."));
    if (buffer == std::string(200, '#')) return "untouched";
    EXPECT_EQ(buffer.find_first_not_of('#', static_cast<std::size_t>(size)), std::string::npos);
    return buffer.c_str();
  }
  std::string Dated(const std::string& name, const std::string& time_code, int size = 200,
                    int expected_code = ADB_RESULT_OK) {
    channel.Expect(kName).Prints(name);
    channel.Expect(kTimeCode).Prints(time_code);
    return Version(size, expected_code);
  }
  std::string Numbered(const std::string& name, const std::string& incremental, int size = 200,
                       int expected_code = ADB_RESULT_OK) {
    channel.Expect(kName).Prints(name);
    channel.Expect(kIncremental).Prints(incremental);
    return Version(size, expected_code);
  }
};

TEST_F(MiuiVersionTest, FromNameAndBuildDate) {
  EXPECT_EQ(Dated("V12\r\n", "1583366400\r\n"), "12.10.3.6");
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbGetMiuiVersion Enter."), Ran(kName),
                          Info("AdbGetMiuiVersion ,version name now have is V12\r\n."), Ran(kTimeCode),
                          Info("AppendMiuiVersionByTimeCode Enter.With time code:1583366400"),
                          Info("AppendMiuiVersionByTimeCode Leave.With version output:12.10.3.6"), GaveBack(),
                          GaveBack(), Info("AdbGetMiuiVersion find version 12.10.3.6 ."),
                          Info("AdbGetMiuiVersion Leave, return 0.")));
}

TEST_F(MiuiVersionTest, FromTheBuildNumber) {
  EXPECT_EQ(Numbered("V130\n", "V13.0.4.0.SKHMIXM\n"), "13.0.4.0");
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbGetMiuiVersion Enter."), Ran(kName),
                          Info("AdbGetMiuiVersion ,version name now have is V130\n."), Ran(kIncremental),
                          GaveBack(), GaveBack(), Info("AdbGetMiuiVersion find version 13.0.4.0 ."),
                          Info("AdbGetMiuiVersion Leave, return 0.")));
  EXPECT_EQ(Numbered("V125\r\n", "V12.5.3.0.RKHCNXM\r\n"), "12.5.3.0");
}

TEST_F(MiuiVersionTest, AVersionWith12IsCutAfterItsThirdDot) {
  EXPECT_EQ(Dated("V12\r\n", "1584230400\r\n"), "12.10.3.1") << "of 12.10.3.16";
  EXPECT_EQ(Numbered("V125\n", "V12.0.5.10.RKHCNXM\n"), "12.0.5.1");
  EXPECT_EQ(Numbered("V125\n", "V12.5.X\n"), "12.5") << "fewer than three dots";
  EXPECT_EQ(Numbered("V125\n", "V12.5.3.\n"), "12.5.3");
  EXPECT_EQ(Dated("V11\r\n", "1584230400\r\n"), "11.10.3.16") << "no other version";
  EXPECT_EQ(Dated("V8\r\n", "1482336000\r\n"), "8.6.12.2") << "but any that was built in a December";
}

TEST_F(MiuiVersionTest, OnALineFeedAloneTheNameKeepsIt) {
  EXPECT_EQ(Dated("V12\n", "1583366400\n"), "12\n.10.3.6");
  EXPECT_EQ(Dated("V12\n", "1584230400\n"), "12\n.10.3.16");
}

TEST_F(MiuiVersionTest, TheNameEndsAtItsFirstCarriageReturnTheTimeCodeAtItsLast) {
  EXPECT_EQ(Dated("V8\rx\r\n", "1482336000\r\n"), "8.6.12.2");
  EXPECT_EQ(Dated("V8\r\n", "148\r2336000\r\n"), "8.-40.1.2") << "148 seconds";
  EXPECT_EQ(log_lines()[log_lines().size() - 4],
            Info("AppendMiuiVersionByTimeCode Enter.With time code:148\r2336000"));
}

TEST_F(MiuiVersionTest, NamesDecideTheSource) {
  EXPECT_EQ(Dated("V100\r\n", "1482336000\r\n"), "100.6.12.2");
  EXPECT_EQ(Numbered("V101\n", "V1.2.3\n"), "1.2");
  EXPECT_EQ(Numbered("816\n", "V8.16.x\n"), "8.16");
  EXPECT_EQ(Numbered("V" + std::string(40, '9') + "\n", "V1.2.3\n"), "1.2");
  EXPECT_EQ(Dated("\r\n", "1482336000\r\n"), ".6.12.2") << "a phone without such a name";
  EXPECT_EQ(Dated("", "1482336000"), ".6.12.2") << "an empty text is a text";
  EXPECT_EQ(Dated("OS2.0 V12\r\n", "1482336000\r\n"), "12.6.12.2");
}

TEST_F(MiuiVersionTest, ANullTextIsRefused) {
  char buffer[] = "before";
  EXPECT_EQ(AdbGetMiuiVersion(nullptr, buffer, sizeof buffer, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetMiuiVersion("S1", nullptr, 7, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbGetMiuiVersion Enter."), Error("AdbGetMiuiVersion, invalid param."),
                          Info("AdbGetMiuiVersion Enter."), Error("AdbGetMiuiVersion, invalid param.")));
}

TEST_F(MiuiVersionTest, AnUnreadNameIsItsOwnCode) {
  channel.Expect(kName).Prints("error: device 'S1' not found\n").Returns(1001);
  EXPECT_EQ(Version(200, ADB_RESULT_MIUI_VERSION_NAME_FAILED), "untouched");
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbGetMiuiVersion Enter."), Ran(kName),
                          Error("ret is 1001,outbuf is:error: device 'S1' not found\n"),
                          Error("AdbGetMiuiVersion , get versoin name failed.GetPropInfo return 45"),
                          GaveBack(), Info("AdbGetMiuiVersion Leave, return 45.")));
  for (const int value : {0, 3003}) {
    channel.Expect(kName).Returns(value);
    EXPECT_EQ(Version(200, ADB_RESULT_MIUI_VERSION_NAME_FAILED), "untouched");
  }
}

TEST_F(MiuiVersionTest, AnUnreadTimeCodeIsItsOwnCode) {
  channel.Expect(kName).Prints("V12\r\n");
  channel.Expect(kTimeCode).Prints("device unauthorized").Returns(1001);
  EXPECT_EQ(Version(200, ADB_RESULT_MIUI_TIME_CODE_FAILED), "untouched");
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbGetMiuiVersion Enter."), Ran(kName),
                          Info("AdbGetMiuiVersion ,version name now have is V12\r\n."), Ran(kTimeCode),
                          Error("ret is 1001,outbuf is:device unauthorized"),
                          Error("AdbGetMiuiVersion , get versoin code time failed.GetPropInfo return 42"),
                          GaveBack(), GaveBack(), Info("AdbGetMiuiVersion Leave, return 44.")));
  channel.Expect(kName).Prints("V12\r\n");
  channel.Expect(kTimeCode);
  EXPECT_EQ(Version(200, ADB_RESULT_MIUI_TIME_CODE_FAILED), "untouched");
  EXPECT_EQ(log_lines()[log_lines().size() - 2],
            Error("AdbGetMiuiVersion , get versoin code time failed.GetPropInfo return 0"));
}

TEST_F(MiuiVersionTest, AnUnreadBuildNumberIsTheSameCode) {
  channel.Expect(kName).Prints("V130\n");
  channel.Expect(kIncremental).Prints("odd").Returns(9);
  EXPECT_EQ(Version(200, ADB_RESULT_MIUI_TIME_CODE_FAILED), "untouched");
  EXPECT_EQ(log_lines()[log_lines().size() - 2],
            Error("AdbGetMiuiVersion , get versoin incremental failed.GetPropInfo return 9"));
  channel.Expect(kName).Prints("V130\n");
  channel.Expect(kIncremental).Returns(3003);
  EXPECT_EQ(Version(200, ADB_RESULT_MIUI_TIME_CODE_FAILED), "untouched");
  EXPECT_EQ(log_lines()[log_lines().size() - 2],
            Error("AdbGetMiuiVersion , get versoin incremental failed.GetPropInfo return 3003"));
}

TEST_F(MiuiVersionTest, ATimeCodeThatIsNotATime) {
  for (const std::string& time_code :
       {"\r\n"s, ""s, "unknown\n"s, std::string(40, '9'), "9223372036854775807"s, "\xff\xfe\0"s}) {
    EXPECT_EQ(Dated("V12\r\n", time_code, 200, ADB_RESULT_MIUI_TIME_CODE_FAILED), "untouched");
    EXPECT_EQ(log_lines()[log_lines().size() - 2].level, 3);
  }
}

TEST_F(MiuiVersionTest, ABuildNumberWithoutADot) {
  for (const char* incremental : {"eng\n", "\n", ""}) {
    EXPECT_EQ(Numbered("V130\n", incremental, 200, ADB_RESULT_MIUI_TIME_CODE_FAILED), "untouched");
    EXPECT_EQ(log_lines()[log_lines().size() - 2],
              Error("AdbGetMiuiVersion , no version in incremental:"s + incremental));
  }
}

TEST_F(MiuiVersionTest, AnEmptyVersionLeavesTheBuffer) {
  EXPECT_EQ(Numbered("V130\n", ".x\n"), "untouched");
  EXPECT_EQ(Numbered("V130\n", "V.x\n"), "untouched");
  EXPECT_EQ(log_lines().size(), 6U) << "nothing found, nothing said";
}

TEST_F(MiuiVersionTest, AroundTheSizeOfTheBuffer) {
  // "13.0.4.0" has eight characters and, unlike other texts, no line break.
  EXPECT_EQ(Numbered("V130\n", "V13.0.4.0.X\n", 9), "13.0.4.0");
  EXPECT_EQ(Numbered("V130\n", "V13.0.4.0.X\n", 8), "13.0.4.");
  EXPECT_EQ(Numbered("V130\n", "V13.0.4.0.X\n", 7, ADB_RESULT_BUFFER_TOO_SMALL), "13.0.4");
  EXPECT_EQ(Numbered("V130\n", "V13.0.4.0.X\n", 1, ADB_RESULT_BUFFER_TOO_SMALL), "");
  EXPECT_EQ(log_lines()[log_lines().size() - 2], Info("AdbGetMiuiVersion find version  ."));
}

TEST_F(MiuiVersionTest, AroundTheSizeOfTheBufferWithAVersion12) {
  // "12.0.5.10" has nine characters, of which eight are shown.
  EXPECT_EQ(Numbered("V125\n", "V12.0.5.10.X\n", 10), "12.0.5.1");
  EXPECT_EQ(Numbered("V125\n", "V12.0.5.10.X\n", 9), "12.0.5.1");
  EXPECT_EQ(Numbered("V125\n", "V12.0.5.10.X\n", 8, ADB_RESULT_BUFFER_TOO_SMALL), "12.0.5.");
  EXPECT_EQ(Numbered("V125\n", "V12.0.5.10.X\n", 4, ADB_RESULT_BUFFER_TOO_SMALL), "12.");
  EXPECT_EQ(Numbered("V125\n", "V12.0.5.10.X\n", 1, ADB_RESULT_BUFFER_TOO_SMALL), "");
}

TEST_F(MiuiVersionTest, ABufferWithoutRoomIsLeftAlone) {
  for (const int size : {0, -1}) {
    channel.Expect(kName).Prints("V125\n");
    channel.Expect(kIncremental).Prints("V12.0.5.10.X\n");
    std::string buffer = "before";
    EXPECT_EQ(AdbGetMiuiVersion("S1", buffer.data(), size, &cancel), ADB_RESULT_BUFFER_TOO_SMALL);
    EXPECT_EQ(buffer, "before");
    EXPECT_EQ(log_lines()[log_lines().size() - 2], Info("AdbGetMiuiVersion find version  ."));
  }
}

TEST_F(MiuiVersionTest, TheEndIsTrimmed) {
  EXPECT_EQ(Numbered("V130\n", "V13.0 \t.x"), "13.0");
  EXPECT_EQ(Numbered("V130\n", "V13.0\v.x"), "13.0\v");
}

TEST_F(MiuiVersionTest, LongTexts) {
  const std::string million(1'000'000, 'x');
  EXPECT_EQ(Dated("V12" + million + "\r\n", "1583366400\r\n", 5, ADB_RESULT_BUFFER_TOO_SMALL), "12xx");
  EXPECT_EQ(Numbered("V130" + million, "V1." + million, 5), "1");
  EXPECT_EQ(Numbered("V130", million + ".x", 5, ADB_RESULT_BUFFER_TOO_SMALL), "xxxx");
}

// What happens to the phone between two commands.
TEST_F(MiuiVersionTest, APhoneThatVanishes) {
  const std::string vanished = "error: device 'S1' not found\n";
  for (const auto& [name, second] : {std::pair("V12\r\n", kTimeCode), std::pair("V130\r\n", kIncremental)}) {
    channel.Expect(kName).Prints(name);
    channel.Expect(second).Prints(vanished).Returns(1001);
    EXPECT_EQ(Version(200, ADB_RESULT_MIUI_TIME_CODE_FAILED), "untouched");
    EXPECT_THAT(log_lines()[log_lines().size() - 2].text, ::testing::EndsWith("GetPropInfo return 24"));
    channel.Expect(kName).Prints(name);
    channel.Expect(second).Returns(3003);
    EXPECT_EQ(Version(200, ADB_RESULT_MIUI_TIME_CODE_FAILED), "untouched");
  }
}

TEST_F(MiuiVersionTest, ZeroBytesArePartOfTheTexts) {
  EXPECT_EQ(Dated("V12\0\r\n"s, "1583366400\r\n"), "12") << "the version continues after the zero";
  EXPECT_EQ(Dated("V\000125\r\n"s, "1583366400\r\n"), "") << "there is no number before it";
  EXPECT_EQ(Numbered("V130\0\n"s, "V13.0\0.4.0\n"s), "13.0");
}

// The properties of real phones; the line breaks are those of their Android releases.
TEST_F(MiuiVersionTest, RealProperties) {
  const std::string miui8 = "getprop/miui8.txt";
  const std::string name8 = DeviceProperty(miui8, "ro.miui.ui.version.name");
  const std::string time8 = DeviceProperty(miui8, "ro.miui.version.code_time");
  EXPECT_EQ(Dated(name8 + "\r\n", time8 + "\r\n"), "8.6.12.2") << "built on 21 December 2016";
  EXPECT_EQ(Dated(name8 + "\n", time8 + "\n"), "8\n.6.12.2");
  const std::string name9 = DeviceProperty("getprop/miui9-kenzo-6.0.1.txt", "ro.miui.ui.version.name");
  EXPECT_EQ(Dated(name9 + "\r\n", "\r\n", 200, ADB_RESULT_MIUI_TIME_CODE_FAILED), "untouched")
      << "it has no time code";
  const std::string name13 = DeviceProperty("getprop/miui13.txt", "ro.miui.ui.version.name");
  const std::string incremental9 =
      DeviceProperty("getprop/miui9-kenzo-6.0.1.txt", "ro.build.version.incremental");
  EXPECT_EQ(Numbered(name13 + "\n", incremental9 + "\n"), "9.6.1.0") << "of two phones";
}

}  // namespace
}  // namespace darokleim::test

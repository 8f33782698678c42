#include <cstdlib>
#include <ctime>
#include <string>

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

TEST_F(MiuiBuildDateTest, LeadingBlanksAndWhatFollowsTheDigitsAreIgnored) {
  for (const std::string& time_code :
       {" \t\n\v\f\r1583366400"s, "1583366400\r\n"s, "1583366400\n"s, "1583366400abc"s, "+1583366400"s,
        "001583366400"s, "1583366400.9"s, "1583366400\0001"s}) {
    EXPECT_EQ(Appended(time_code), "10.3.6") << time_code;
  }
}

TEST_F(MiuiBuildDateTest, WhatIsNoTimeIsRefused) {
  for (const std::string& time_code :
       {""s, "\n"s, "abc"s, "V12"s, "-"s, "+"s, ".5"s, "\0001583366400"s, "\xff\xfe"s,
        std::string(40, '9'),            // no unsigned number
        std::string(1'000'000, '9'),     // nor this
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

}  // namespace
}  // namespace darokleim::test

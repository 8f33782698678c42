#include "src/filesystem/local_time_text.h"

#include <gtest/gtest.h>
#include <time.h>

#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/plain_listing.h"
#include "tests/unit/filesystem/local_zone.h"

namespace darokleim::test {
namespace {

constexpr std::uint64_t kDay = 86400;

TEST(LocalTimeTextTest, SecondsOfADay) {
  const LocalZone zone("UTC0");
  sdk::LocalTimeText text(10);
  EXPECT_EQ(text.Of(0), "1970-01-01 00:00:00");
  EXPECT_EQ(text.Of(1), "1970-01-01 00:00:01");
  EXPECT_EQ(text.Of(kDay - 1), "1970-01-01 23:59:59");
  EXPECT_EQ(text.Of(kDay), "1970-01-02 00:00:00");
  EXPECT_EQ(text.Of(951782399), "2000-02-28 23:59:59");
  EXPECT_EQ(text.Of(951782400), "2000-02-29 00:00:00");
}

TEST(LocalTimeTextTest, TheZoneIsReadAgainByEachObject) {
  LocalZone west("EST5");
  EXPECT_EQ(sdk::LocalTimeText(1).Of(0), "1969-12-31 19:00:00");
  LocalZone east("NPT-5:45");
  EXPECT_EQ(sdk::LocalTimeText(1).Of(0), "1970-01-01 05:45:00");
}

TEST(LocalTimeTextTest, FarTimes) {
  const LocalZone zone("UTC0");
  sdk::LocalTimeText text(10);
  EXPECT_EQ(text.Of(253402300799), "9999-12-31 23:59:59");
  EXPECT_EQ(text.Of(253402300800), "10000-01-01 00:00:00");
  EXPECT_EQ(text.Of(3155695200000000), "") << "24 bytes do not hold a year of nine digits";
  EXPECT_EQ(text.Of(~0ULL), "1969-12-31 23:59:59") << "a signed second";
  EXPECT_EQ(text.Of(~0ULL / 2), "") << "past the calendar";
  EXPECT_EQ(text.Of(~0ULL / 2 + 1), "") << "before it";
}

// Each moment at which the zone's clock may change: found by looking at every half day.
std::vector<time_t> Changes(time_t begin, time_t end) {
  constexpr time_t kStep = 12 * 60 * 60;
  std::vector<time_t> changes;
  const auto offset = [](time_t time) {
    tm local;
    localtime_r(&time, &local);
    return local.tm_gmtoff;
  };
  for (time_t at = begin; at < end; at += kStep) {
    time_t low = at, high = at + kStep;
    if (offset(low) == offset(high)) continue;
    while (high - low > 1) {
      const time_t middle = low + (high - low) / 2;
      (offset(middle) == offset(low) ? low : high) = middle;
    }
    changes.push_back(high);
  }
  return changes;
}

int ExpectSameAround(const std::vector<time_t>& times) {
  sdk::LocalTimeText text(times.size());
  int compared = 0;
  for (const time_t time : times) {
    for (const long apart : {-172800L, -86400L, -43200L, -3601L, -3600L, -1801L, -61L, -2L, -1L, 0L, 1L, 59L,
                             1800L, 3599L, 3600L, 7200L, 43200L, 86399L, 86400L}) {
      if (time + apart < 0) continue;
      const auto at = static_cast<std::uint64_t>(time + apart);
      EXPECT_EQ(text.Of(at), PlainLocalTime(at)) << getenv("TZ") << " " << at;
      ++compared;
    }
  }
  return compared;
}

TEST(LocalTimeTextTest, AroundEachChangeOfTheClock) {
  const std::set<std::string> zones = {"America/New_York",
                                       "America/St_Johns",
                                       "America/Caracas",
                                       "Europe/Berlin",
                                       "Europe/London",
                                       "Africa/Casablanca",
                                       "Africa/Monrovia",
                                       "Asia/Shanghai",
                                       "Asia/Kathmandu",
                                       "Asia/Pyongyang",
                                       "Australia/Lord_Howe",
                                       "Antarctica/Troll",
                                       "Pacific/Apia",
                                       "Pacific/Kwajalein",
                                       "Pacific/Kiritimati",
                                       "EST5EDT,M3.2.0,M11.1.0",
                                       "NZST-12NZDT,M9.5.0,M4.1.0/3",
                                       "X-0:00:07Y,M5.1.0/0:00:01,M6.1.0/23:59:59"};
  int changes = 0;
  for (const std::string& name : zones) {
    const LocalZone zone(name);
    tzset();
    const auto times = Changes(0, 2208988800);  // to 2040
    changes += static_cast<int>(times.size());
    ExpectSameAround(times);
  }
  EXPECT_GT(changes, 800) << "is there no time zone database?";
}

TEST(LocalTimeTextTest, AroundLeapSeconds) {
  if (!std::filesystem::exists("/usr/share/zoneinfo/right/Asia/Kathmandu"))
    GTEST_SKIP() << "this system does not have these zones";
  for (const char* name : {"right/UTC", "right/Europe/Berlin", "right/Asia/Kathmandu"}) {
    const LocalZone zone(name);
    // From the first to the last leap second so far, each second of the days around them.
    for (const std::uint64_t leap : {78796800ULL, 1483228826ULL}) {
      sdk::LocalTimeText text(10);
      bool met = false;
      for (std::uint64_t at = leap - kDay; at < leap + kDay; ++at) {
        const std::string plain = PlainLocalTime(at);
        met |= plain.compare(plain.size() - 2, 2, "60") == 0;
        ASSERT_EQ(text.Of(at), plain) << name << " " << at;
      }
      EXPECT_TRUE(met) << name << " " << leap;
    }
  }
}

TEST(LocalTimeTextTest, AnyTimeInAnyOrder) {
  std::mt19937_64 random(1);
  for (const char* name : {"UTC0", "Europe/Berlin", "Australia/Lord_Howe", "NPT-5:45"}) {
    const LocalZone zone(name);
    sdk::LocalTimeText few(1), many(1'000'000);
    for (int i = 0; i < 100'000; ++i) {
      const std::uint64_t at = random() >> (random() % 48);
      const std::string plain = PlainLocalTime(at);
      ASSERT_EQ(few.Of(at), plain) << name << " " << at;
      ASSERT_EQ(many.Of(at), plain) << name << " " << at;
    }
  }
}

TEST(LocalTimeTextTest, FromManyThreads) {
  const LocalZone zone("Europe/Berlin");
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([i] {
      for (int round = 0; round < 50; ++round) {
        sdk::LocalTimeText text(100);
        for (std::uint64_t day = 0; day < 100; ++day) {
          const std::string time = text.Of(1'600'000'000 + day * kDay + static_cast<std::uint64_t>(i));
          EXPECT_EQ(time.size(), 19U);
          EXPECT_EQ(time.back(), static_cast<char>('0' + i));
        }
      }
    });
  }
  for (auto& thread : threads) thread.join();
}

}  // namespace
}  // namespace darokleim::test

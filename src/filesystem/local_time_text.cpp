#include "src/filesystem/local_time_text.h"

#include <time.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace darokleim::sdk {
namespace {

constexpr std::int32_t kDay = 86400;
constexpr std::int32_t kHour = 3600;
constexpr std::int32_t kMinute = 60;
constexpr std::size_t kDateLength = 10;
// Eleven years, in 128 KiB.
constexpr std::size_t kMostDays = 4096;
// Two days before the year 10000: in every zone the year has four digits until then.
constexpr std::uint64_t kEndOfShortYears = 253402300800U - 2U * kDay;

// Without the cache.
std::string FormatOne(std::uint64_t timestamp) {
  const auto time = static_cast<time_t>(timestamp);
  tm local;
  if (localtime_r(&time, &local) == nullptr) return {};
  char text[24];
  return {text, strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &local)};
}

std::int32_t SecondOfDay(const tm& local) {
  return local.tm_hour * kHour + local.tm_min * kMinute + local.tm_sec;
}

// Whether all local times of a day of UTC follow from its first and last second: no zone has changed its clock twice
// within a day. In the zones that count leap seconds, such a second makes the day longer.
bool IsSteady(const tm& first, const tm& last) {
  return first.tm_gmtoff == last.tm_gmtoff && last.tm_sec < kMinute &&
         SecondOfDay(last) == (SecondOfDay(first) + kDay - 1) % kDay;
}

using TwoDigits = std::array<char, 2>;
constexpr std::array<TwoDigits, 100> kTwoDigits = [] {
  std::array<TwoDigits, 100> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    numbers[i] = {static_cast<char>('0' + i / 10), static_cast<char>('0' + i % 10)};
  }
  return numbers;
}();

// number: below 100.
void PutTwoDigits(char* to, std::uint32_t number) {
  std::memcpy(to, kTwoDigits[number].data(), sizeof(TwoDigits));
}

// YYYY-MM-DD, of a year of four digits.
void PutDate(char* to, const tm& local) {
  const auto year = static_cast<std::uint32_t>(local.tm_year + 1900);
  PutTwoDigits(to, year / 100);
  PutTwoDigits(to + 2, year % 100);
  to[4] = to[7] = '-';
  PutTwoDigits(to + 5, static_cast<std::uint32_t>(local.tm_mon + 1));
  PutTwoDigits(to + 8, static_cast<std::uint32_t>(local.tm_mday));
}

}  // namespace

LocalTimeText::LocalTimeText(std::size_t times)
    : days_(std::bit_ceil(std::clamp<std::size_t>(times, 1, kMostDays))) {
  // localtime_r itself reads the time zone only once.
  tzset();
}

std::string LocalTimeText::Of(std::uint64_t timestamp) {
  if (timestamp >= kEndOfShortYears) return FormatOne(timestamp);
  const Day& day = DayOf(static_cast<std::int32_t>(timestamp / kDay));
  if (day.clock != Day::Clock::kSteady) return FormatOne(timestamp);
  const auto since_first_date =
      static_cast<std::uint32_t>(day.first_second) + static_cast<std::uint32_t>(timestamp % kDay);
  const bool next_date = since_first_date >= kDay;
  const std::uint32_t second = next_date ? since_first_date - kDay : since_first_date;
  std::string text = "YYYY-MM-DD HH:MM:SS";
  std::memcpy(text.data(), day.dates[next_date], kDateLength);
  PutTwoDigits(&text[11], second / kHour);
  PutTwoDigits(&text[14], second / kMinute % kMinute);
  PutTwoDigits(&text[17], second % kMinute);
  return text;
}

const LocalTimeText::Day& LocalTimeText::DayOf(std::int32_t number) {
  Day& day = days_[static_cast<std::size_t>(number) & (days_.size() - 1)];
  if (day.clock != Day::Clock::kUnknown && day.number == number) return day;
  const time_t begin = static_cast<time_t>(number) * kDay;
  const time_t end = begin + kDay - 1;
  tm first;
  tm last;
  day.number = number;
  day.clock = Day::Clock::kChanges;
  if (localtime_r(&begin, &first) == nullptr || localtime_r(&end, &last) == nullptr) return day;
  if (!IsSteady(first, last)) return day;
  day.clock = Day::Clock::kSteady;
  day.first_second = SecondOfDay(first);
  PutDate(day.dates[0], first);
  PutDate(day.dates[1], last);
  return day;
}

}  // namespace darokleim::sdk

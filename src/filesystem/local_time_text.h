// Times of the host's time zone as text, for many timestamps at once.
#ifndef DAROKLEIM_SRC_FILESYSTEM_LOCAL_TIME_TEXT_H
#define DAROKLEIM_SRC_FILESYSTEM_LOCAL_TIME_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace darokleim::sdk {

// Same results as localtime and strftime, which are called only once for each day that occurs: they take locks
// and would cost more than all the rest of reading a listing.
class LocalTimeText {
 public:
  // Reads the host's time zone again, as localtime does at each call. times: about how many will be converted.
  explicit LocalTimeText(std::size_t times);

  // "%Y-%m-%d %H:%M:%S" of seconds since 1970-01-01 00:00 UTC; empty for a time that localtime cannot
  // represent or a text longer than 23 bytes.
  std::string Of(std::uint64_t timestamp);

 private:
  // One day of UTC, which begins at some second of a local date and ends on that date or the next.
  struct Day {
    enum class Clock : unsigned char { kUnknown, kSteady, kChanges };
    std::int32_t number;  // since 1970-01-01
    std::int32_t first_second;
    char dates[2][10];  // YYYY-MM-DD
    Clock clock;
  };

  const Day& DayOf(std::int32_t number);

  std::vector<Day> days_;  // each day is stored at its number modulo the size, a power of two
};

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_LOCAL_TIME_TEXT_H

// Times of the host's time zone as text, for many timestamps at once.
#ifndef DAROKLEIM_SRC_FILESYSTEM_LOCAL_TIME_TEXT_H
#define DAROKLEIM_SRC_FILESYSTEM_LOCAL_TIME_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace darokleim::sdk {

// Gives what localtime and strftime give, but asks them only once for each day that occurs: they take locks
// and would cost more than all the rest of reading a listing.
class LocalTimeText {
 public:
  // Reads the host's time zone anew, as localtime does at each call. times: about how many are to come.
  explicit LocalTimeText(std::size_t times);

  // "%Y-%m-%d %H:%M:%S" of seconds since 1970-01-01 00:00 UTC; empty for a time past every calendar or with
  // more digits than a buffer of 24 bytes holds.
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

  std::vector<Day> days_;  // each day in the place of its number modulo their number, a power of two
};

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_LOCAL_TIME_TEXT_H

// Numbers and times, as people read them.
#ifndef DAROKLEIM_TOOLS_CLI_OUTPUT_HUMAN_TEXT_H
#define DAROKLEIM_TOOLS_CLI_OUTPUT_HUMAN_TEXT_H

#include <cstdint>
#include <string>

namespace darokleim::cli {

// "0 B", "1023 B", "1.0 KiB", "12 MiB": powers of 1024, two digits at least, rounded to the nearest.
std::string SizeText(std::uint64_t bytes);

// "1 file", "3 files".
std::string CountText(std::uint64_t count, const std::string& noun);

// Seconds since 1970-01-01 00:00 UTC as "2020-01-02 03:04:05" in this computer's time zone; the number itself
// when the system cannot write it as a time.
std::string LocalTimeText(std::int64_t seconds);

// The same as "2020-01-02T03:04:05Z".
std::string UtcTimeText(std::int64_t seconds);

// One of the two.
std::string TimeText(std::int64_t seconds, bool utc);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_OUTPUT_HUMAN_TEXT_H

#include "tools/cli/output/human_text.h"

#include <time.h>

#include <array>
#include <cstdio>

namespace darokleim::cli {
namespace {

constexpr std::array<const char*, 7> kUnits = {"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};

std::string FormattedTime(std::int64_t seconds, tm* (*convert)(const time_t*, tm*), const char* format) {
  tm parts{};
  char text[64];
  const time_t time = static_cast<time_t>(seconds);
  if (convert(&time, &parts) == nullptr || strftime(text, sizeof text, format, &parts) == 0) {
    return std::to_string(seconds);
  }
  return text;
}

}  // namespace

std::string SizeText(std::uint64_t bytes) {
  double value = static_cast<double>(bytes);
  std::size_t unit = 0;
  while (value >= 1023.5 && unit + 1 < kUnits.size()) {
    value /= 1024;
    ++unit;
  }
  const bool needs_fraction = unit > 0 && value < 9.95;
  char text[32];
  std::snprintf(text, sizeof text, needs_fraction ? "%.1f %s" : "%.0f %s", value, kUnits[unit]);
  return text;
}

std::string CountText(std::uint64_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string LocalTimeText(std::int64_t seconds) {
  return FormattedTime(seconds, localtime_r, "%Y-%m-%d %H:%M:%S");
}

std::string UtcTimeText(std::int64_t seconds) {
  return FormattedTime(seconds, gmtime_r, "%Y-%m-%dT%H:%M:%SZ");
}

std::string TimeText(std::int64_t seconds, bool utc) {
  return utc ? UtcTimeText(seconds) : LocalTimeText(seconds);
}

}  // namespace darokleim::cli

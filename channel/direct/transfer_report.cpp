#include "channel/direct/transfer_report.h"

#include <cinttypes>
#include <cstdio>

namespace darokleim::channel::direct {

// adb 34 words the summary in the same way.
std::string TransferReport::Summary(int files, int skipped) const {
  return source_ + ": " + std::to_string(files) + (files == 1 ? " file " : " files ") +
         (direction_ == Direction::kPush ? "pushed, " : "pulled, ") + std::to_string(skipped) + " skipped." +
         Rate() + '\n';
}

std::string TransferReport::Rate() const {
  const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
  if (bytes_ == 0 || seconds <= 0) return {};
  constexpr double kMegabyte = 1024 * 1024;
  char text[128];
  snprintf(text, sizeof text, " %.1f MB/s (%" PRIu64 " bytes in %.3fs)",
           static_cast<double>(bytes_) / seconds / kMegabyte, bytes_, seconds);
  return text;
}

std::string TransferReport::Progress(uint64_t expected_bytes) const {
  if (bytes_ == 0) return {};
  // A file may hold more than its size says.
  if (bytes_ > expected_bytes) return "[   ?] " + source_ + ": " + std::to_string(bytes_) + "/?\n";
  char percent[8];
  snprintf(percent, sizeof percent, "[%3d%%] ", static_cast<int>(bytes_ * 100 / expected_bytes));
  return percent + source_ + '\n';
}

}  // namespace darokleim::channel::direct

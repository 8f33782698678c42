// What adb prints about the transfer of one file.
#ifndef DAROKLEIM_CHANNEL_DIRECT_TRANSFER_REPORT_H
#define DAROKLEIM_CHANNEL_DIRECT_TRANSFER_REPORT_H

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace darokleim::channel::direct {

enum class Direction { kPush, kPull };

// Counts from its construction on.
class TransferReport {
 public:
  TransferReport(Direction direction, std::string source)
      : direction_(direction), source_(std::move(source)) {}

  void Add(size_t bytes) { bytes_ += bytes; }

  // "SOURCE: 1 file pushed, 0 skipped. 16.1 MB/s (4096 bytes in 0.000s)\n"
  std::string Summary(int files, int skipped) const;

  // The line that adb leaves when it pulls and does not come to the summary: "[ 50%] SOURCE\n". Empty before the first
  // byte.
  std::string Progress(uint64_t expected_bytes) const;

 private:
  using Clock = std::chrono::steady_clock;

  std::string Rate() const;

  const Direction direction_;
  const std::string source_;
  const Clock::time_point start_ = Clock::now();
  uint64_t bytes_ = 0;
};

}  // namespace darokleim::channel::direct

#endif  // DAROKLEIM_CHANNEL_DIRECT_TRANSFER_REPORT_H

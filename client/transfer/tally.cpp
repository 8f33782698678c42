#include "client/transfer/tally.h"

#include <algorithm>
#include <limits>

namespace darokleim::client {
namespace {

// Sizes are the phone's word.
std::uint64_t Sum(std::uint64_t a, std::uint64_t b) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  return b > kMost - a ? kMost : a + b;
}

}  // namespace

bool IsOfOneFile(dk_code code) {
  return (code >= DK_NOT_FOUND && code <= DK_CHANGED) || code == DK_COMMAND_FAILED ||
         code == DK_UNSUPPORTED || code == DK_SERVER_REFUSED;
}

void Tally::Expect(std::uint64_t bytes) {
  progress_.bytes_total = Sum(progress_.bytes_total, bytes);
  ++progress_.files_total;
}

void Tally::Begin(const char* path, std::uint64_t size) {
  progress_.path = path;
  progress_.file_done = 0;
  progress_.file_size = size;
}

Status Tally::Ask() {
  if (options_.on_progress == nullptr || options_.on_progress(options_.user, &progress_)) return {};
  return client::Stopped(what_);
}

void Tally::Sent(std::uint64_t bytes) {
  progress_.file_done += bytes;
  progress_.bytes_done = Sum(progress_.bytes_done, bytes);
  progress_.bytes_total = std::max(progress_.bytes_total, progress_.bytes_done);  // a file that has grown
  summary_.bytes_sent += bytes;
}

void Tally::Skipped(std::uint64_t size) {
  ++summary_.files_skipped;
  ++progress_.files_done;
  progress_.bytes_done = Sum(progress_.bytes_done, size);
  progress_.bytes_total = std::max(progress_.bytes_total, progress_.bytes_done);
}

Status Tally::Failed(Error error) {
  if (!IsOfOneFile(error.code)) return error;
  ++summary_.files_failed;
  if (!options_.keep_going) return error;
  if (options_.on_error == nullptr) return {};
  const dk_error shown{std::move(error)};
  if (options_.on_error(options_.user, &shown)) return {};
  return client::Stopped(what_);
}

Status Tally::Finish() {
  Begin("", 0);
  static_cast<void>(Ask());
  if (summary_.files_failed == 0) return {};
  return client::Failed(DK_PARTLY_DONE, what_,
                        std::to_string(summary_.files_failed) + " of the files failed");
}

}  // namespace darokleim::client

// What a transfer of many files has done so far, and what its caller wants to know of it.
#ifndef DAROKLEIM_CLIENT_TRANSFER_TALLY_H
#define DAROKLEIM_CLIENT_TRANSFER_TALLY_H

#include <cstdint>
#include <string>
#include <string_view>

#include "client/call.h"

namespace darokleim::client {

// Files and folders that are remembered between the walk that counts them and their transfer; of more, the walk is repeated.
inline constexpr std::size_t kMostRemembered = 4096;

class Tally {
 public:
  Tally(const dk_transfer_options& options, std::string what) : options_(options), what_(std::move(what)) {}

  const dk_transfer_options& options() const { return options_; }
  const std::string& what() const { return what_; }
  const dk_summary& summary() const { return summary_; }

  // Before the first byte.
  void Expect(std::uint64_t bytes);

  std::uint64_t expected_bytes() const { return progress_.bytes_total; }
  std::uint64_t files_left() const {
    // A file may count in both: see Whole().
    const std::uint64_t ended = progress_.files_done + summary_.files_failed;
    return progress_.files_total > ended ? progress_.files_total - ended : 0;
  }
  std::uint64_t bytes_done() const { return progress_.bytes_done; }

  // A file is begun; its path must live until the next one.
  void Begin(const char* path, std::uint64_t size);
  // The caller is asked before each block; DK_STOPPED when it does not want to go on.
  Status Ask();
  void Sent(std::uint64_t bytes);
  // The same bytes once more: they are sent, and no progress.
  void SentAgain(std::uint64_t bytes) { summary_.bytes_sent += bytes; }

  // A file is whole, and under its name.
  void Done() { ++progress_.files_done, ++summary_.files_sent; }
  // A file is whole, and may still fail: it gets its name later, and is not in the summary.
  void Whole() { ++progress_.files_done; }
  void Skipped(std::uint64_t size);
  // A file's error: the caller is told, and whether the rest goes on is its choice. Errors that the rest would have, too
  // (the phone is gone, cancelled, out of time), end the transfer.
  Status Failed(Error error);
  // After the last one. The caller sees the final numbers, also where every file was skipped; its answer changes nothing.
  Status Finish();

 private:
  dk_transfer_options options_;
  std::string what_;
  dk_progress progress_ = {};
  dk_summary summary_ = {};
};

// Whether what failed is one file, so that others may succeed.
bool IsOfOneFile(dk_code code);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_TRANSFER_TALLY_H

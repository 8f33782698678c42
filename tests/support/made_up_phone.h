#ifndef DAROKLEIM_TESTS_SUPPORT_MADE_UP_PHONE_H
#define DAROKLEIM_TESTS_SUPPORT_MADE_UP_PHONE_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include "tests/support/forked_server.h"

namespace darokleim::test {

// An adb server with a phone of Android 8 or later that makes up what it is asked for: folders and files of any size, at the
// speed of the socket. It takes what is sent, keeps nothing, and every command succeeds and prints nothing. It is a process
// of its own, so that its memory is not that of the test.
class MadeUpPhone {
 public:
  static constexpr char kSerial[] = "MADEUP01";
  // The only folder at the top. Folders are called d0, d1 …, files IMG_0.jpg, IMG_1.jpg …; nothing else exists.
  static constexpr char kFolder[] = "/made";

  struct Content {
    std::uint64_t files = 0;  // in each folder
    unsigned folders = 0;     // in each folder that is not at the lowest level
    unsigned levels = 0;      // of folders below kFolder
    std::uint64_t file_size = 0;
    std::int64_t modified = 1'600'000'000;
    // After so many entries of a folder nothing more comes, not even the end.
    std::uint64_t entries_before_silence = std::numeric_limits<std::uint64_t>::max();
  };

  // What was asked of it.
  struct Counts {
    std::atomic<std::uint64_t> connections;
    std::atomic<std::uint64_t> statuses;  // the following four are requests of the sync service
    std::atomic<std::uint64_t> lists;
    std::atomic<std::uint64_t> fetched;
    std::atomic<std::uint64_t> sent;
    std::atomic<std::uint64_t> commands;
    std::atomic<std::uint64_t> bytes_sent;  // of files
  };

  explicit MadeUpPhone(const Content& content);
  MadeUpPhone(const MadeUpPhone&) = delete;
  MadeUpPhone& operator=(const MadeUpPhone&) = delete;

  // As for an adb client: tcp:PORT.
  std::string address() const { return "tcp:" + std::to_string(server_.port()); }
  static std::string PathOfFile(std::uint64_t number);
  const Counts& counts() const { return *counts_; }
  void ResetCounts();

 private:
  struct Unmap {
    void operator()(Counts* counts) const;
  };

  std::unique_ptr<Counts, Unmap> counts_;  // shared with the process
  const ForkedServer server_;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_MADE_UP_PHONE_H

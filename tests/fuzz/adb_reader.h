// Gives a reader of the adb library any bytes as what its server has sent before it ended.
#ifndef DAROKLEIM_TESTS_FUZZ_ADB_READER_H
#define DAROKLEIM_TESTS_FUZZ_ADB_READER_H

#include <fcntl.h>
#include <sys/socket.h>

#include <array>
#include <string_view>

#include "adb/connection.h"
#include "tests/fuzz/fuzz.h"

namespace darokleim::adb_fuzz {

// Longer inputs would fill the socket before anyone reads.
constexpr std::size_t kLongestInput = 64 * 1024;

// A connection with this input. What the reader sends is taken until the socket is full.
class ServerOfBytes {
 public:
  explicit ServerOfBytes(std::string_view bytes) {
    std::array<int, 2> ends;
    sdk::Require(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) == 0);
    near_.Reset(ends[0]);
    far_.Reset(ends[1]);
    sdk::Require(fcntl(near_.get(), F_SETFL, O_NONBLOCK) == 0);
    bytes = bytes.substr(0, kLongestInput);
    sdk::Require(send(far_.get(), bytes.data(), bytes.size(), MSG_DONTWAIT) ==
                 static_cast<ssize_t>(bytes.size()));
    sdk::Require(shutdown(far_.get(), SHUT_WR) == 0);
  }

  adb::Connection Take() { return adb::Connection(std::move(near_), /*tcp=*/false); }

 private:
  base::UniqueFd near_;
  base::UniqueFd far_;
};

// An input that is read to its end fails only in these ways, and says what was expected.
inline void RequireAnErrorOfTheInput(const adb::Error& error) {
  const bool named = error.message.rfind("expected ", 0) == 0;
  switch (error.code) {
    case adb::ErrorCode::kRefused:
      return;
    case adb::ErrorCode::kProtocolFault:
    case adb::ErrorCode::kConnectionBroken:
      return sdk::Require(named);
    default:
      sdk::Require(false);
  }
}

// A reader must not wait where the server has ended: then this deadline makes it fail.
inline adb::Limits Soon() {
  return {adb::Clock::now() + std::chrono::seconds(5), nullptr};
}

}  // namespace darokleim::adb_fuzz

#endif  // DAROKLEIM_TESTS_FUZZ_ADB_READER_H

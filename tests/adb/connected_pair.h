// Two connected sockets: one end for a Connection, the other in the test's hands.
#ifndef DAROKLEIM_TESTS_ADB_CONNECTED_PAIR_H
#define DAROKLEIM_TESTS_ADB_CONNECTED_PAIR_H

#include <fcntl.h>
#include <sys/socket.h>

#include <array>
#include <stdexcept>

#include "adb/connection.h"

namespace darokleim::adb_test {

struct ConnectedPair {
  ConnectedPair() {
    std::array<int, 2> ends;
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0 || fcntl(ends[0], F_SETFL, O_NONBLOCK) != 0) {
      throw std::runtime_error("no sockets");
    }
    near.Reset(ends[0]);
    far.Reset(ends[1]);
  }

  adb::Connection Take() { return adb::Connection(std::move(near), /*tcp=*/false); }

  base::UniqueFd near;
  base::UniqueFd far;
};

}  // namespace darokleim::adb_test

#endif  // DAROKLEIM_TESTS_ADB_CONNECTED_PAIR_H

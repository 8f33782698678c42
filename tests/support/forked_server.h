#ifndef DAROKLEIM_TESTS_SUPPORT_FORKED_SERVER_H
#define DAROKLEIM_TESTS_SUPPORT_FORKED_SERVER_H

#include <sys/types.h>

#include <functional>

#include "base/unique_fd.h"

namespace darokleim::test {

// A server of a test in a process of its own, which does not share what the test does to its process: memory that runs
// out, for example. It ends with this object.
class ForkedServer {
 public:
  // Reports the port of the running server. Does not return.
  using Report = std::function<void(int port)>;

  // `serve` runs in the other process: it starts the server and reports its port.
  explicit ForkedServer(const std::function<void(const Report&)>& serve);
  ~ForkedServer();
  ForkedServer(const ForkedServer&) = delete;
  ForkedServer& operator=(const ForkedServer&) = delete;

  int port() const { return port_; }

 private:
  pid_t pid_;
  base::UniqueFd life_;  // the server's process ends when it is closed
  int port_ = 0;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_FORKED_SERVER_H

#include "tests/support/forked_server.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <stdexcept>

#include "base/read_some.h"
#include "tests/support/pipe.h"

namespace darokleim::test {
namespace {

[[noreturn]] void ServeUntilClosed(const std::function<void(const ForkedServer::Report&)>& serve, int answer,
                                   int life) {
  try {
    serve([&](int port) {
      char unused;
      if (write(answer, &port, sizeof port) == sizeof port) base::ReadSome(life, &unused, 1);
      _exit(0);
    });
  } catch (const std::exception& error) {
    fprintf(stderr, "the server of the test: %s\n", error.what());
  }
  _exit(1);
}

}  // namespace

ForkedServer::ForkedServer(const std::function<void(const Report&)>& serve) {
  Pipe answer;
  Pipe life;
  fflush(nullptr);
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("no process left");
  if (pid_ == 0) {
    life.write_end.Reset();
    ServeUntilClosed(serve, answer.write_end.get(), life.read_end.get());
  }
  life_ = std::move(life.write_end);
  answer.write_end.Reset();
  if (base::ReadSome(answer.read_end.get(), &port_, sizeof port_) != sizeof port_) {
    throw std::runtime_error("the server of the test does not run");
  }
}

ForkedServer::~ForkedServer() {
  life_.Reset();
  while (waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace darokleim::test

#ifndef DAROKLEIM_TESTS_PHONE_HOST_SOCKETS_H
#define DAROKLEIM_TESTS_PHONE_HOST_SOCKETS_H

#include <atomic>
#include <string>
#include <thread>

namespace darokleim::test {

// Sends the text to a port of the host and reads everything that comes back; empty when nobody listens.
std::string Exchange(int port, const std::string& text);

// Answers one connection to a port of the host with what it sent, in brackets.
class HostEcho {
 public:
  HostEcho();
  ~HostEcho();
  HostEcho(const HostEcho&) = delete;
  HostEcho& operator=(const HostEcho&) = delete;

  std::string port() const { return std::to_string(port_); }
  std::string address() const { return "tcp:" + port(); }

 private:
  void AnswerOne();

  int listener_;
  int port_ = 0;
  std::thread thread_;
};

// A port of the host where nobody listens, as far as can be known beforehand.
int FreeHostPort();

// Something else on a port of the host where adb looks for its server. It gives everyone the same answer and hangs up.
class ForeignServer {
 public:
  explicit ForeignServer(std::string answer);
  ~ForeignServer();
  ForeignServer(const ForeignServer&) = delete;
  ForeignServer& operator=(const ForeignServer&) = delete;

  std::string port() const { return std::to_string(port_); }

 private:
  void AnswerAll();

  const std::string answer_;
  const int listener_;
  int port_ = 0;
  std::atomic<bool> ends_ = false;
  std::thread thread_;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_PHONE_HOST_SOCKETS_H

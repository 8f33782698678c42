#ifndef DAROKLEIM_TESTS_PHONE_HOST_SOCKETS_H
#define DAROKLEIM_TESTS_PHONE_HOST_SOCKETS_H

#include <string>
#include <thread>

namespace darokleim::test {

// Sends the text to a port of the host and reads everything that comes back; nothing when nobody listens.
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

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_PHONE_HOST_SOCKETS_H

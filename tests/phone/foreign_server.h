#ifndef DAROKLEIM_TESTS_PHONE_FOREIGN_SERVER_H
#define DAROKLEIM_TESTS_PHONE_FOREIGN_SERVER_H

#include <atomic>
#include <string>
#include <thread>

namespace darokleim::test {

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

#endif  // DAROKLEIM_TESTS_PHONE_FOREIGN_SERVER_H

#ifndef DAROKLEIM_TESTS_CHANNEL_DIRECT_PHONE_SERVER_H
#define DAROKLEIM_TESTS_CHANNEL_DIRECT_PHONE_SERVER_H

#include <atomic>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "base/unique_fd.h"

namespace darokleim::channel {

// An adb server with phones that do what a test says, on a port of its own. It is of another version than adb.
class PhoneServer {
 public:
  // Answers a request for a service of a phone, OKAY included, and returns when the connection is to end.
  using Serve = std::function<void(const std::string& service, int connection)>;

  PhoneServer(std::string features, Serve serve);
  ~PhoneServer();
  PhoneServer(const PhoneServer&) = delete;
  PhoneServer& operator=(const PhoneServer&) = delete;

  std::string port() const { return std::to_string(port_); }
  // The services that phones were asked for.
  std::vector<std::string> services() const;
  // Connections that the client has not ended.
  int open_connections() const { return open_; }
  // Ends all connections.
  void Disconnect();

 private:
  struct Client {
    base::UniqueFd connection;
    std::thread thread;
  };

  void Accept();
  void Answer(int connection);

  const std::string features_;
  const Serve serve_;
  base::UniqueFd listener_;
  int port_ = 0;
  std::atomic<int> open_ = 0;
  mutable std::mutex mutex_;
  bool stopping_ = false;
  std::list<Client> clients_;
  std::vector<std::string> services_;
  std::thread thread_;
};

// At most as many bytes as there are before the client closes.
std::string ReadBytes(int connection, size_t count);
// False when the client has closed.
bool WriteBytes(int connection, std::string_view bytes);
void WaitUntilClosed(int connection);

// Numbers with the lowest byte first.
std::string Number32(uint32_t number);
std::string Number64(uint64_t number);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_TESTS_CHANNEL_DIRECT_PHONE_SERVER_H

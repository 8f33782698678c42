// Servers of tests that answer as a test says: any bytes, slowly, in part, or never.
#ifndef DAROKLEIM_TESTS_SUPPORT_SCRIPTED_SERVER_H
#define DAROKLEIM_TESTS_SUPPORT_SCRIPTED_SERVER_H

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "adb/address.h"
#include "base/unique_fd.h"

namespace darokleim::test {

// One exchange: what the client sends, and what it gets for it.
struct Exchange {
  std::string request;
  std::string reply;
};

// How the server answers. The default sends every reply in one piece and then waits for the client to close.
struct Manner {
  std::size_t cut_after = SIZE_MAX;  // bytes of all replies of a connection that are sent
  bool hang_when_cut = false;        // neither sends nor closes then; otherwise it closes
  bool byte_by_byte = false;
  bool close_at_end = false;
};

// A server on a port or a local socket of its own, each client on a thread of its own.
class ScriptedServer {
 public:
  // A closed connection keeps a port of the machine for a minute: tests that open thousands use a local socket.
  enum class Socket { kPort, kLocal };
  // Serves one connection, which ends when it returns.
  using Serve = std::function<void(int connection)>;
  explicit ScriptedServer(Serve serve, Socket socket = Socket::kPort);
  // Plays the same conversation to each client.
  explicit ScriptedServer(std::vector<Exchange> conversation, Manner manner = {});
  // Closes what is open and waits for the server's threads.
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  std::uint16_t port() const { return port_; }
  adb::ServerAddress address() const {
    adb::ServerAddress address;
    address.port = port_;
    return address;
  }
  // As a caller of the client names it.
  std::string name() const;
  // Requests that were not as the conversation says; empty when all were.
  std::string surprises() const;
  int connections() const { return connections_; }
  // Those that the client has not ended.
  int open_connections() const { return open_; }
  // Ends all connections.
  void Disconnect();

 private:
  struct Client {
    base::UniqueFd connection;
    std::atomic<bool> done = false;
    std::thread thread;
  };

  void Listen();
  void ListenOnPort();
  void ListenOnFile();
  void Accept();
  void Play(int connection);

  const std::vector<Exchange> conversation_;
  const Manner manner_;
  const Serve serve_;
  const Socket socket_ = Socket::kPort;
  std::string folder_;  // of the local socket
  base::UniqueFd listener_;
  std::uint16_t port_ = 0;
  std::atomic<int> connections_{0}, open_{0};
  mutable std::mutex mutex_;
  bool stopping_ = false;
  std::list<Client> clients_;
  std::string surprises_;
  std::thread thread_;
};

// An adb server with phones that do what a test says; it answers for the server itself. It is of another version than adb, and
// has a phone of any serial but ABSENT.
class ScriptedPhone {
 public:
  // Answers a request for a service of a phone, OKAY included, and returns when the connection is to end.
  using Serve = std::function<void(const std::string& service, int connection)>;
  ScriptedPhone(std::string features, Serve serve);

  std::string port() const { return std::to_string(server_.port()); }
  // The services that phones were asked for.
  std::vector<std::string> services() const;
  int open_connections() const { return server_.open_connections(); }
  void Disconnect() { server_.Disconnect(); }

 private:
  void Answer(int connection);

  const std::string features_;
  const Serve serve_;
  mutable std::mutex mutex_;
  std::vector<std::string> services_;
  ScriptedServer server_;
};

// For `serve` functions. Reading gives fewer bytes only where the client has closed; writing is false then.
std::string ReadBytes(int connection, std::size_t count);
bool WriteBytes(int connection, std::string_view bytes);
void WaitUntilClosed(int connection);

// A request with its length before it, in four hexadecimal digits, and a text likewise.
std::string Request(std::string_view text);
// The text of the next request; empty where the client has closed.
std::string ReadRequest(int connection);

// Numbers with the lowest byte first.
std::string Number32(std::uint32_t number);
std::string Number64(std::uint64_t number);

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_SCRIPTED_SERVER_H

#ifndef DAROKLEIM_TESTS_ADB_SCRIPTED_SERVER_H
#define DAROKLEIM_TESTS_ADB_SCRIPTED_SERVER_H

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "adb/address.h"
#include "base/unique_fd.h"

namespace darokleim::adb_test {

// A request with its length before it, and a text likewise.
std::string Request(std::string_view text);

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

// A server on a port of its own that plays the same conversation to each client, one client after the other.
class ScriptedServer {
 public:
  explicit ScriptedServer(std::vector<Exchange> conversation, Manner manner = {});
  // Runs `serve` for each connection instead.
  explicit ScriptedServer(std::function<void(int connection)> serve);
  // Closes what is open and waits for the server's thread.
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  adb::ServerAddress address() const;
  // Requests that were not as the conversation says; empty when all were.
  std::string surprises() const;
  int connections() const { return connections_; }

 private:
  void Listen();
  void Run();
  void Play(int connection);

  const std::vector<Exchange> conversation_;
  const Manner manner_;
  const std::function<void(int)> serve_;
  base::UniqueFd listener_;
  std::uint16_t port_ = 0;
  std::atomic<int> connections_{0};
  mutable std::mutex mutex_;
  bool stopping_ = false;
  base::UniqueFd current_;
  std::string surprises_;
  std::thread thread_;
};

// For `serve` functions. Reading gives fewer bytes only where the client has closed.
std::string ReadBytes(int connection, std::size_t count);
bool WriteBytes(int connection, std::string_view bytes);
void WaitUntilClosed(int connection);

}  // namespace darokleim::adb_test

#endif  // DAROKLEIM_TESTS_ADB_SCRIPTED_SERVER_H

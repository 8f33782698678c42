// An adb server with one phone, X, that answers every call of calls.h, and whose answers a test spoils.
#ifndef DAROKLEIM_TESTS_CLIENT_SPOILT_PHONE_H
#define DAROKLEIM_TESTS_CLIENT_SPOILT_PHONE_H

#include <atomic>
#include <mutex>
#include <set>
#include <string>
#include <string_view>

#include "tests/support/scripted_server.h"

namespace darokleim::client_test {

struct Spoiling {
  enum class Then {
    kClose,    // this connection ends, and each later one at once
    kHang,     // this connection is silent from then on; later ones are answered
    kHangAll,  // so are all later ones
    kBytes,    // this connection gets `bytes` and ends; later ones are answered
  };
  std::size_t good = SIZE_MAX;  // bytes that are as they should be, counted over all connections
  Then then = Then::kClose;
  std::string bytes = {};
  bool byte_by_byte = false;
  std::string refuses_phone = {};    // said in place of the phone, where not empty
  std::string refuses_service = {};  // said in place of each of its services
};

class SpoiltPhone {
 public:
  // modern: as a phone since Android 7; otherwise as an older one.
  explicit SpoiltPhone(bool modern, Spoiling spoiling = {},
                       test::ScriptedServer::Socket socket = test::ScriptedServer::Socket::kLocal);

  // It is of the other generation from its next answer on.
  void Become(bool modern) { modern_ = modern; }

  // Every connection ends. Unplugged, the phone is unknown to the server; plugged in again, it has another transport.
  void Unplug();
  void Plug();

  // Of one with a port.
  int port() const { return server_.port(); }
  std::string address() const { return server_.name(); }
  // Bytes that were as they should be.
  std::size_t sent() const;
  // Whether the good ones have come to their end.
  bool is_spoilt() const;
  int open_connections() const { return server_.open_connections(); }
  // What the client must not have done; empty where it has not.
  std::string harm() const;

 private:
  struct Printed {
    std::string out, err;
    int status = 0;
  };

  void Serve(int connection);
  // Both are false when the connection is to end.
  bool AnswerHost(const std::string& request, int connection);
  bool Write(int connection, std::string_view bytes);
  void AnswerService(const std::string& service, int connection);
  void AnswerShell(const std::string& script, bool apart, int connection);
  void AnswerFiles(int connection);
  bool TakeFile(const std::string& path, int connection);
  void TakeBackup(int connection);
  std::string Status(const std::string& id, const std::string& path) const;
  std::string List(const std::string& folder) const;
  Printed Print(const std::string& script);
  void CheckMove(const std::string& script);

  std::string DeviceList() const;

  std::atomic<bool> modern_;
  std::atomic<bool> attached_ = true;
  std::atomic<std::uint64_t> transport_ = 7;
  const Spoiling spoiling_;
  mutable std::mutex mutex_;
  std::size_t sent_ = 0;
  bool spoilt_ = false;
  std::set<std::string> whole_;  // files that the phone has whole
  std::string harm_;
  test::ScriptedServer server_;
};

// What the phone saves of an application, and takes back with kZerosAfterBackup zero bytes after it.
std::string BackupOfApp();
inline constexpr std::size_t kZerosAfterBackup = 1024;

// A record of the phone's log, as `logcat -B` prints it.
std::string LogRecord(std::string_view tag, std::string_view text);

}  // namespace darokleim::client_test

#endif  // DAROKLEIM_TESTS_CLIENT_SPOILT_PHONE_H

// A server whose watch, log and shell call back without a pause, and what they call.
#ifndef DAROKLEIM_TESTS_CLIENT_RESTLESS_SERVER_H
#define DAROKLEIM_TESTS_CLIENT_RESTLESS_SERVER_H

#include <darokleim/client.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "tests/client/spoilt_phone.h"
#include "tests/support/scripted_server.h"

namespace darokleim::client_test {

// A server with a phone that comes and goes as fast as the server can say it, and whose log has no end.
class RestlessServer {
 public:
  explicit RestlessServer(test::ScriptedServer::Socket socket = test::ScriptedServer::Socket::kLocal)
      : server_([](int connection) { Serve(connection); }, socket) {}
  std::string address() const { return server_.name(); }
  int port() const { return server_.port(); }
  int open_connections() const { return server_.open_connections(); }

 private:
  static void Serve(int connection) {
    using test::Number32;
    using test::Request;
    for (;;) {
      const std::string request = test::ReadRequest(connection);
      if (request.empty()) return;
      if (request == "host:track-devices-l") {
        test::WriteBytes(connection, "OKAY");
        const std::string lists = Request("X device transport_id:1\n") + Request("");
        while (test::WriteBytes(connection, lists)) {
        }
        return;
      }
      if (request.rfind("shell,v2", 0) == 0) {
        const std::string output = LogRecord("Tag", "one"), more = LogRecord("Tag", "more");
        test::WriteBytes(connection, "OKAY\1" + Number32(static_cast<std::uint32_t>(output.size())) + output);
        const std::string packet = '\1' + Number32(static_cast<std::uint32_t>(more.size())) + more;
        while (test::WriteBytes(connection, packet)) {
        }
        return;
      }
      const bool is_transport = request.rfind("host:tport", 0) == 0;
      test::WriteBytes(connection, "OKAY" + (is_transport ? test::Number64(1) : Request("shell_v2,cmd")));
    }
  }
  const test::ScriptedServer server_;
};

// What callbacks write to: freed as soon as no callback may come, so that a late one is found by a sanitizer, or here.
struct Listener {
  void Call() {
    EXPECT_FALSE(stopped) << "a callback after the stop";
    ++calls;
  }
  std::atomic<bool> stopped{false};
  std::atomic<int> calls{0};
  std::atomic<int> ends{0};
  dk_watch* watch = nullptr;
  dk_log* log = nullptr;
  dk_shell* shell = nullptr;
};

inline void OnChange(void* user, dk_change, const dk_device_info*) {
  static_cast<Listener*>(user)->Call();
}
inline void OnRecord(void* user, const dk_log_record*) {
  static_cast<Listener*>(user)->Call();
}
inline void OnEnd(void* user, dk_code code, const dk_error*) {
  auto* const listener = static_cast<Listener*>(user);
  EXPECT_FALSE(listener->stopped);
  EXPECT_EQ(code, DK_OK);
  ++listener->ends;
}

inline void OnShellOutput(void* user, dk_stream, const char*, size_t) {
  static_cast<Listener*>(user)->Call();
}
inline void OnShellEnd(void* user, dk_code code, int, const dk_error* error) {
  OnEnd(user, code, error);
}

}  // namespace darokleim::client_test

#endif  // DAROKLEIM_TESTS_CLIENT_RESTLESS_SERVER_H

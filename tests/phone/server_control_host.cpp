// Starts, restarts and kills a real adb server through the library, among other real processes, and prints what
// became of each. Run as: server_control_host DIRECTORY, where adb and busybox are and logs may be written; only
// as the first process of a PID namespace of its own, since it would kill what others run.
#include <arpa/inet.h>
#include <darokleim.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/process.h"
#include "tests/support/sleeper.h"

namespace {

using darokleim::test::Sleeper;

sockaddr_in LocalAddress(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

std::uint16_t FreePort() {
  const int listener = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address = LocalAddress(0);
  socklen_t size = sizeof(address);
  bind(listener, reinterpret_cast<sockaddr*>(&address), size);
  getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
  close(listener);
  return ntohs(address.sin_port);
}

// A client's connection to the server that runs at the time.
class Connection {
 public:
  explicit Connection(std::uint16_t port) : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
    const sockaddr_in address = LocalAddress(port);
    answered_ = connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    const timeval patience = {5, 0};
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
  }
  ~Connection() { close(socket_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool answered() const { return answered_; }
  // The server's end closes it, which the system also does for one that was killed.
  bool WasEnded() const {
    char byte;
    const ssize_t count = recv(socket_, &byte, 1, 0);
    return count == 0 || (count < 0 && errno == ECONNRESET);
  }

 private:
  int socket_;
  bool answered_ = false;
};

void Print(const char* what, const char* outcome) {
  std::printf("%s: %s\n", what, outcome);
}

void PrintServer(std::uint16_t port) {
  Print("server", Connection(port).answered() ? "answers" : "gone");
}

}  // namespace

int main(int argc, char** argv) {
  if (!darokleim::test::IsFirstProcessOfNamespace()) {
    std::fputs("not in a PID namespace of its own\n", stderr);
    return 2;
  }
  if (argc != 2) return 2;
  const std::uint16_t port = FreePort();
  setenv("ANDROID_ADB_SERVER_PORT", std::to_string(port).c_str(), 1);
  setenv("HOME", argv[1], 1);
  if (AdbSdkInit(argv[1], argv[1], argv[1]) != ADB_RESULT_OK) return 2;

  PrintServer(port);
  std::printf("AdbStartDaemonEx: %d\n", AdbStartDaemonEx(false, nullptr));
  PrintServer(port);
  const Connection first_server(port);
  std::printf("AdbStartDaemonEx: %d\n", AdbStartDaemonEx(false, nullptr));

  Sleeper processes[] = {Sleeper("vi adb.txt"), Sleeper("adbd"), Sleeper("my_adb")};
  std::printf("AdbRestartDaemon: %d\n", AdbRestartDaemon());
  Print("first server", first_server.WasEnded() ? "ended" : "runs");
  PrintServer(port);
  for (Sleeper& process : processes) {
    Print(process.command_line().c_str(), process.WasKilled() ? "killed" : "alive");
  }

  Sleeper client("/opt/tools/adb -s X logcat");
  AdbKillDaemon(nullptr);
  PrintServer(port);
  Print(client.command_line().c_str(), client.WasKilled() ? "killed" : "alive");

  std::printf("AdbStartDaemon: %d\n", AdbStartDaemon(true, nullptr));
  PrintServer(port);
  AdbKillDaemon(nullptr);
  PrintServer(port);
}

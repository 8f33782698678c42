#include "client/server_start.h"

#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>

#include "base/spawn.h"

namespace darokleim::client {
namespace {

// Starting a server takes a second or two; how often adb is looked after meanwhile.
constexpr std::chrono::milliseconds kLook{10};

// Whether the child has ended. It has, for us, where the host reaps it itself.
bool HasEnded(pid_t child) {
  pid_t reaped;
  do {
    reaped = waitpid(child, nullptr, WNOHANG);
  } while (reaped < 0 && errno == EINTR);
  return reaped != 0;
}

void End(pid_t child) {
  kill(child, SIGKILL);
  while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace

Status RunStartServer(const std::string& adb_path, const std::string& server, const Limits& limits) {
  std::vector<std::string> words;
  if (!server.empty()) words = {"-L", server};
  words.emplace_back("start-server");
  base::Spawned adb;
  if (const int error = base::Spawn(adb_path, words, &adb); error != 0) {
    return FromHostErrno(error, "start " + Shown(adb_path), adb_path);
  }
  while (!HasEnded(adb.pid)) {
    Limits look = limits;
    look.deadline = std::min(limits.deadline, adb::Clock::now() + kLook);
    static_cast<void>(adb::WaitFor(-1, 0, look));
    if (adb::Status status = adb::Check(limits); !status.ok()) {
      End(adb.pid);
      return FromAdb(status.error(), "start an adb server", "");
    }
  }
  return {};
}

}  // namespace darokleim::client

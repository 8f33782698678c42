// Runs AdbKillDaemon with real processes and the real `ps`, and prints what happened to each. Refuses to run unless it
// is the first process of a PID namespace: it would kill the processes of others.
#include <cstdio>

#include "darokleim.h"
#include "src/platform/command_channel.h"
#include "src/platform/log_library.h"
#include "tests/support/process.h"
#include "tests/support/sleeper.h"

bool InitLogEx(const void*, const char*, const char*) {
  return true;
}
void LogEx(const char*, int, const char*, ...) {}
int InitAdbCommuncation2Server(const char*, const char*, const void*) {
  return 0;
}
int ExecuteAdbCommandSynchronization(const char*, const bool*, char**, int*) {
  return 0;
}
int ExecuteAdbCommandAnsynchronization(const char*, const bool*, void*, void*) {
  return 0;
}
void ReleaseAdbOutBuffer(char*) {}

int main() {
  if (!darokleim::test::IsFirstProcessOfNamespace()) {
    std::fputs("not in a PID namespace of its own\n", stderr);
    return 2;
  }
  darokleim::test::Sleeper processes[] = {
      darokleim::test::Sleeper("adb -L tcp:5037 fork-server server"),
      darokleim::test::Sleeper("/opt/tools/adb -s X logcat"),
      darokleim::test::Sleeper("vi adb.txt"),
      darokleim::test::Sleeper("adbd"),
      darokleim::test::Sleeper("my_adb"),
      darokleim::test::Sleeper("sleep"),
  };
  AdbKillDaemon(nullptr);
  for (auto& process : processes) {
    std::printf("%s: %s\n", process.command_line().c_str(), process.WasKilled() ? "killed" : "alive");
  }
}

// A command channel of one's own in place of the library's.
#include <darokleim.h>
#include <darokleim/command_channel.h>

#include <cstring>

namespace {

char reply[] = "List of devices attached\nABC\tdevice\n";

}  // namespace

int InitAdbCommuncation2Server(const char*, const char*, const void*) {
  return 0;
}

int ExecuteAdbCommandSynchronization(const char*, const bool*, char** out, int* out_len) {
  *out = reply;
  *out_len = static_cast<int>(std::strlen(reply));
  return 0;
}

int ExecuteAdbCommandAnsynchronization(const char*, const bool*, void*, void*) {
  return 1;
}

void ReleaseAdbOutBuffer(char*) {}

int main() {
  char devices[64] = "";
  const int code = AdbGetDevices(devices, sizeof devices, nullptr);
  return code == ADB_RESULT_OK && std::strcmp(devices, "ABC-device;") == 0 ? 0 : 1;
}

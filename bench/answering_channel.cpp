#include "bench/answering_channel.h"

#include "src/platform/command_channel.h"
#include "src/platform/log_library.h"

int InitAdbCommuncation2Server(const char*, const char*, const void*) {
  return 0;
}
int ExecuteAdbCommandSynchronization(const char* args, const bool*, char** out, int* out_len) {
  std::string& answer = darokleim::bench::device_answer(args);
  *out = answer.data();
  *out_len = static_cast<int>(answer.size());
  return 0;
}
int ExecuteAdbCommandAnsynchronization(const char*, const bool*, void*, void*) {
  return 0;
}
void ReleaseAdbOutBuffer(char*) {}
bool InitLogEx(const void*, const char*, const char*) {
  return true;
}
void LogEx(const char*, int, const char*, ...) {}

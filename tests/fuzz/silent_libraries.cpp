// What the SDK needs beside itself: a channel that runs nothing, and a log that formats each line, so that a wrong argument is
// found, and discards it.
#include <cstdarg>
#include <cstdio>

#include "src/platform/command_channel.h"
#include "src/platform/log_library.h"

int ExecuteAdbCommandSynchronization(const char* /*args*/, const bool* /*cancel*/, char** /*out*/,
                                     int* /*out_len*/) {
  constexpr int kAdbCannotBeRun = 3002;
  return kAdbCannotBeRun;
}

void ReleaseAdbOutBuffer(char* /*out*/) {}

void LogEx(const char* /*module*/, int /*level*/, const char* format, ...) {
  char line[256];
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
}

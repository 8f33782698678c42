#include "tools/cli/output/standard_streams.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <iostream>
#include <string>

#include "base/terminal_text.h"

namespace darokleim::cli {

namespace {

// Opened the wrong way round, so that reading and writing still fail as on a closed descriptor.
void TakeIfClosed(int descriptor, int mode) {
  if (fcntl(descriptor, F_GETFD) < 0) open("/dev/null", mode);  // lands on the lowest that is closed
}

}  // namespace

int TakeStandardOutput() {
  TakeIfClosed(STDIN_FILENO, O_WRONLY);
  TakeIfClosed(STDOUT_FILENO, O_RDONLY);
  TakeIfClosed(STDERR_FILENO, O_RDONLY);
  // A reader that has gone away is seen by the failed write.
  signal(SIGPIPE, SIG_IGN);
  const int standard_output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  // Texts of the device, raw, which nobody asked for.
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(nowhere < 0 ? STDERR_FILENO : nowhere, STDOUT_FILENO);
  if (nowhere >= 0) close(nowhere);
  return standard_output;
}

void PrintError(std::string_view message) {
  const bool on_terminal = isatty(STDERR_FILENO) == 1;
  std::cerr << "darokleim: " << (on_terminal ? base::EscapeControls(message, "\n") : std::string(message))
            << std::endl;
}

}  // namespace darokleim::cli

#include "tests/cli/terminal_run.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <stdexcept>

namespace darokleim::cli {

using test::Environment;
using test::Outcome;
using test::RunProgram;
using test::Words;

Outcome RunOnTerminal(const Words& command, const Environment& variables) {
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (terminal < 0 || grantpt(terminal) != 0 || unlockpt(terminal) != 0) {
    throw std::runtime_error("no terminal left");
  }
  // The shell opens the terminal's other side for the program; held open here, what it prints is not lost.
  const std::string name = ptsname(terminal);
  const int other_side = open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  Words words = {"/bin/sh", "-c", "exec >\"$0\" 2>&1; exec \"$@\"", name};
  words.insert(words.end(), command.begin(), command.end());
  Outcome outcome = RunProgram(words, variables);
  fcntl(terminal, F_SETFL, O_NONBLOCK);
  char buffer[4096];
  for (ssize_t count; (count = read(terminal, buffer, sizeof buffer)) > 0;) {
    outcome.output.append(buffer, static_cast<size_t>(count));
  }
  close(other_side);
  close(terminal);
  return outcome;
}

}  // namespace darokleim::cli

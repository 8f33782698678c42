#include "tests/cli/terminal_run.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <stdexcept>

#include "tests/support/eventually.h"

namespace darokleim::cli {

using test::Environment;
using test::Outcome;
using test::RunProgram;
using test::Words;

namespace {

base::UniqueFd OpenTerminal() {
  base::UniqueFd terminal(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (!terminal.valid() || grantpt(terminal.get()) != 0 || unlockpt(terminal.get()) != 0)
    throw std::runtime_error("no terminal left");
  fcntl(terminal.get(), F_SETFL, O_NONBLOCK);
  return terminal;
}

// The shell opens the terminal's other side for the program.
Words OnTerminal(const char* redirections, const base::UniqueFd& terminal, const Words& command) {
  const std::string line = "exec " + std::string(redirections) + "; exec \"$@\"";
  Words words = {"/bin/sh", "-c", line, ptsname(terminal.get())};
  words.insert(words.end(), command.begin(), command.end());
  return words;
}

// Held open here, what a program prints is not lost when it ends.
base::UniqueFd OtherSideOf(const base::UniqueFd& terminal) {
  return base::UniqueFd(open(ptsname(terminal.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
}

std::string ReadShown(const base::UniqueFd& terminal) {
  std::string shown;
  char buffer[4096];
  for (ssize_t count; (count = read(terminal.get(), buffer, sizeof buffer)) > 0;) {
    shown.append(buffer, static_cast<size_t>(count));
  }
  return shown;
}

}  // namespace

Outcome RunOnTerminal(const Words& command, const Environment& variables) {
  const base::UniqueFd terminal = OpenTerminal();
  const base::UniqueFd other_side = OtherSideOf(terminal);
  Outcome outcome = RunProgram(OnTerminal(">\"$0\" 2>&1", terminal, command), variables);
  outcome.output += ReadShown(terminal);
  return outcome;
}

TerminalSession::TerminalSession(const Words& command, const Environment& variables)
    : terminal_(OpenTerminal()),
      other_side_(OtherSideOf(terminal_)),
      program_(std::make_unique<test::HostProcess>(OnTerminal("<\"$0\" >\"$0\" 2>&1", terminal_, command),
                                                   variables)) {}

void TerminalSession::Type(const std::string& keys) const {
  if (write(terminal_.get(), keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
    throw std::runtime_error("the terminal takes no more");
}

bool TerminalSession::Shows(const std::string& text) {
  return test::Eventually([&] {
    shown_ += ReadShown(terminal_);
    return shown_.find(text) != std::string::npos;
  });
}

void TerminalSession::Resize(unsigned short rows, unsigned short columns) const {
  const winsize size = {rows, columns, 0, 0};
  ioctl(terminal_.get(), TIOCSWINSZ, &size);
  program_->Signal(SIGWINCH);  // the terminal is not the program's own, so that the system does not send it
}

bool TerminalSession::is_raw() const {
  termios settings = {};
  tcgetattr(other_side_.get(), &settings);
  return (settings.c_lflag & (ICANON | ECHO | ISIG)) == 0;
}

}  // namespace darokleim::cli

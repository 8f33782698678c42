// A terminal whose every key goes to the device.
#ifndef DAROKLEIM_TOOLS_CLI_HOST_RAW_TERMINAL_H
#define DAROKLEIM_TOOLS_CLI_HOST_RAW_TERMINAL_H

#include <signal.h>

#include <cstdint>

#include "tools/cli/host/wake_up.h"

namespace darokleim::cli {

// While one lives, the terminal passes every key on and changes nothing. Its settings come back however the process ends, but
// by a signal that cannot be caught. At most one at a time.
class RawTerminal {
 public:
  // Does nothing where it is not wanted, or not a terminal.
  RawTerminal(int terminal, bool wanted);
  ~RawTerminal();
  RawTerminal(const RawTerminal&) = delete;
  RawTerminal& operator=(const RawTerminal&) = delete;
};

// For an end of the process that runs no destructors: the settings of before, where a RawTerminal lives. From any thread and from
// a signal handler.
void RestoreTerminal();

// 0 where it is not known.
struct WindowSize {
  std::uint16_t rows = 0;
  std::uint16_t columns = 0;
};
WindowSize WindowSizeOf(int terminal);

// Wakes while it lives whenever the size of the terminal's window changes. At most one at a time.
class WindowChanges {
 public:
  explicit WindowChanges(const WakeUp& wake_up);
  ~WindowChanges();
  WindowChanges(const WindowChanges&) = delete;
  WindowChanges& operator=(const WindowChanges&) = delete;

  // Whether it has changed since the last call.
  bool Take();

 private:
  struct sigaction before_ {};
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_HOST_RAW_TERMINAL_H

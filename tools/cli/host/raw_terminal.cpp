#include "tools/cli/host/raw_terminal.h"

#include <sys/ioctl.h>
#include <termios.h>

#include <atomic>

namespace darokleim::cli {
namespace {

termios settings_before;
std::atomic<int> raw_terminal{-1};  // its descriptor; settings_before is complete then

std::atomic<const WakeUp*> window_wakes{nullptr};
std::atomic<bool> window_has_changed{false};

extern "C" void OnWindowChange(int) {
  window_has_changed = true;
  if (const WakeUp* const wake_up = window_wakes) wake_up->Wake();
}

}  // namespace

RawTerminal::RawTerminal(int terminal, bool wanted) {
  if (!wanted || tcgetattr(terminal, &settings_before) != 0) return;
  termios raw = settings_before;
  cfmakeraw(&raw);
  raw_terminal = terminal;
  // What was typed ahead stays.
  tcsetattr(terminal, TCSADRAIN, &raw);
}

RawTerminal::~RawTerminal() {
  RestoreTerminal();
  raw_terminal = -1;
}

void RestoreTerminal() {
  const int terminal = raw_terminal;
  if (terminal >= 0) tcsetattr(terminal, TCSANOW, &settings_before);
}

WindowSize WindowSizeOf(int terminal) {
  winsize size = {};
  if (ioctl(terminal, TIOCGWINSZ, &size) != 0) return {};
  return {size.ws_row, size.ws_col};
}

WindowChanges::WindowChanges(const WakeUp& wake_up) {
  window_wakes = &wake_up;
  struct sigaction action {};
  action.sa_handler = OnWindowChange;
  sigaction(SIGWINCH, &action, &before_);
}

WindowChanges::~WindowChanges() {
  sigaction(SIGWINCH, &before_, nullptr);
  window_wakes = nullptr;
}

bool WindowChanges::Take() {
  return window_has_changed.exchange(false);
}

}  // namespace darokleim::cli

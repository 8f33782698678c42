#include "tools/cli/commands/shell/shell_session.h"

#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <mutex>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/host/raw_terminal.h"
#include "tools/cli/host/standard_input.h"
#include "tools/cli/host/wake_up.h"

namespace darokleim::cli {
namespace {

constexpr std::size_t kMostAtOnce = 64 * 1024;

// Commas and colons end it in the request to the device.
std::string TerminalType() {
  const char* const type = getenv("TERM");
  return type == nullptr || std::string_view(type).find_first_of(",:") != std::string_view::npos ? "" : type;
}

// What the session's thread reports.
class SessionEnd {
 public:
  void Failed(std::exception_ptr thrown) {
    const std::lock_guard lock(mutex_);
    thrown_ = std::move(thrown);
    is_there_ = true;
    wake_up_.Wake();
  }
  void Ended(int exit_status, const dk::Error* error) {
    const std::lock_guard lock(mutex_);
    if (error != nullptr) error_ = *error;
    exit_status_ = std::max(exit_status, 0);
    is_there_ = true;
    wake_up_.Wake();
  }
  bool has_failed() const {
    const std::lock_guard lock(mutex_);
    return thrown_ != nullptr;
  }
  bool is_there() const {
    const std::lock_guard lock(mutex_);
    return is_there_;
  }
  // Once it is there.
  int ExitStatus() const {
    const std::lock_guard lock(mutex_);
    if (thrown_) std::rethrow_exception(thrown_);
    if (error_) throw dk::Error(*error_);
    return exit_status_;
  }
  WakeUp& wake_up() { return wake_up_; }

 private:
  WakeUp wake_up_;
  mutable std::mutex mutex_;
  std::exception_ptr thrown_;
  std::optional<dk::Error> error_;
  int exit_status_ = 0;
  bool is_there_ = false;
};

dk::ShellOptions OptionsFor(const SessionRequest& request) {
  dk::ShellOptions options;
  options.command = request.command;
  options.terminal = request.has_terminal;
  if (!request.has_terminal) return options;
  options.terminal_type = TerminalType();
  const WindowSize size = WindowSizeOf(STDIN_FILENO);
  options.rows = size.rows;
  options.columns = size.columns;
  return options;
}

void PassInput(Tool& tool, const dk::Shell& shell, SessionEnd& end) {
  WindowChanges window(end.wake_up());
  bool has_input = true;
  while (!end.is_there()) {
    CheckCancelled();
    pollfd waits[] = {{has_input ? STDIN_FILENO : -1, POLLIN, 0}, {end.wake_up().descriptor(), POLLIN, 0}};
    if (poll(waits, 2, -1) < 0) continue;
    end.wake_up().Clear();
    if (window.Take()) {
      const WindowSize size = WindowSizeOf(STDIN_FILENO);
      shell.resize(size.rows, size.columns).value();
    }
    if (waits[0].revents == 0) continue;
    const std::string input = ReadStandardInput(kMostAtOnce);
    has_input = !input.empty();
    const auto given = has_input ? shell.write(input, tool.limits()) : shell.close_input();
    if (given.code() == DK_STOPPED) {
      has_input = false;  // the end is on its way
    } else {
      given.value();
    }
  }
}

}  // namespace

int RunShellSession(Tool& tool, const SessionRequest& request,
                    const std::function<void(dk_stream stream, std::string_view data)>& receive) {
  SessionEnd end;
  const auto on_output = [&](dk_stream stream, std::string_view data) {
    if (end.has_failed()) return;
    try {
      receive(stream, data);
    } catch (...) {
      end.Failed(std::current_exception());
    }
  };
  const auto on_end = [&end](dk_code code, int exit_status, const dk::Error* error) {
    const dk::Error of_code(code);
    end.Ended(exit_status, error == nullptr && code != DK_OK ? &of_code : error);
  };
  const dk::Shell shell = tool.phone().shell(OptionsFor(request), on_output, on_end, tool.limits()).value();
  const RawTerminal raw(STDIN_FILENO, request.has_terminal);
  PassInput(tool, shell, end);
  return end.ExitStatus();
}

}  // namespace darokleim::cli

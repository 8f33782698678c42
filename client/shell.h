// Commands on the phone, of both generations.
#ifndef DAROKLEIM_CLIENT_SHELL_H
#define DAROKLEIM_CLIENT_SHELL_H

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "adb/shell.h"
#include "client/exit_mark.h"
#include "client/features.h"

namespace darokleim::client {

// The words as a line for the phone's shell, each quoted.
std::string CommandLine(std::initializer_list<std::string_view> words);

// Where the output of a command goes as it comes; false ends the command. Phones before Android 7 have one stream.
using Receive = std::function<bool(adb::ShellStream stream, std::string_view data)>;
// The next piece of the command's input; empty at its end.
using NextInput = std::function<std::string_view()>;

// Runs a script in the phone's shell to its end and gives its exit status. Where the phone does not say the status, the
// script is made to print it at its end, which is taken off: DK_CONNECTION_LOST when it is missing.
//
// `what` is what the caller does, for errors: "list the applications". Give no `input` but to phones that can take it
// (DK_UNSUPPORTED otherwise).
Result<int> RunScript(dk_device* device, std::string_view script, std::string_view what,
                      const Receive& receive, const Limits& limits, const NextInput& input = nullptr);

// The newest form that this phone, behind this server, has: kV2 or kRaw. Phones before Android 5 do not have kRaw either.
Result<adb::ShellForm> ShellFormOf(dk_device* device, std::string_view what, const Limits& limits);

// A script whose output is followed while it runs, perhaps on another thread.
struct OpenedShell {
  adb::ShellSession session;
  std::string device_serial;
};
// DK_UNSUPPORTED on phones before Android 5, whose only shell is a terminal.
Result<OpenedShell> OpenShell(dk_device* device, std::string_view script, std::string_view what,
                              const Limits& limits);
// Its output, the error output left out where the phone keeps them apart, until its end. Gives its exit status; 0 on phones that
// do not say it, which also cannot say whether the connection broke.
Result<int> FollowShell(OpenedShell* shell, std::string_view what,
                        const std::function<bool(std::string_view)>& receive, const Limits& limits);

struct Collected {
  std::string out, err;
  int exit_status = 0;
};
// The same, with what it printed. DK_ANSWER_UNREADABLE beyond `most` bytes: no answer that is read whole is that long.
inline constexpr std::size_t kMostCollected = std::size_t{64} * 1024 * 1024;
Result<Collected> CollectScript(dk_device* device, std::string_view script, std::string_view what,
                                const Limits& limits, std::size_t most = kMostCollected);

// A script that runs while the caller does something else. Of little output: the phone waits where nobody reads it.
class RunningScript {
 public:
  static Result<RunningScript> Start(Features* features, std::string_view script, std::string_view what,
                                     const Limits& limits);
  // As CollectScript: waits for its end.
  Result<Collected> Finish(const Limits& limits);

 private:
  RunningScript(dk_device* device, std::string_view what, adb::ShellSession session, adb::ShellForm form,
                std::optional<ExitMark> mark)
      : device_(device), what_(what), session_(std::move(session)), form_(form), mark_(std::move(mark)) {}

  dk_device* device_;
  std::string what_;
  adb::ShellSession session_;
  adb::ShellForm form_;
  std::optional<ExitMark> mark_;  // of phones that do not say the exit status
};

// DK_COMMAND_FAILED, with the first line of what the command said.
Error CommandFailed(std::string_view what, const Collected& collected);

// Calls `use` with each line, without its line break, CR LF included. False from it ends the loop.
template <typename Use>
void ForEachLine(std::string_view text, Use use) {
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(line.size() < text.size() ? line.size() + 1 : line.size());
    while (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (!use(line)) return;
  }
}

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_SHELL_H

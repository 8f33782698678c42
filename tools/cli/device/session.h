// The started library.
#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_SESSION_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_SESSION_H

#include <string>

#include "tools/cli/command_line/argument_types.h"
#include "tools/cli/connection/connection.h"
#include "tools/cli/host/adb_location.h"

namespace darokleim::cli {

// As given on the command line; empty where not.
struct SessionOptions : ConnectionOptions {
  HostPath busybox;
  HostDirectory log_directory;
};

class Session {
 public:
  // Finds adb and starts the library. Throws ToolError. The library can be started once in a process.
  explicit Session(const SessionOptions& options);

  // After each call of the library: throws Cancelled after Ctrl-C, and ToolError when the time is over or the code is
  // not 0. action completes "cannot …", as "list devices".
  void Check(int code, const std::string& action) const;

  // Its two halves.
  void CheckCancelled(const std::string& action) const;
  void CheckCode(int code, const std::string& action) const;
  // Whether there is a busybox for devices.
  bool has_busybox() const { return programs_.busybox.has_value(); }

 private:
  [[noreturn]] void ThrowTimedOut(const std::string& action) const;

  HostPrograms programs_;
  std::string log_directory_;
  int timeout_;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_SESSION_H

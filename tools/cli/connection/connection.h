// The way from a command to a device: the adb server, the device that the user chose, limits of every call.
#ifndef DAROKLEIM_TOOLS_CLI_CONNECTION_CONNECTION_H
#define DAROKLEIM_TOOLS_CLI_CONNECTION_CONNECTION_H

#include <chrono>
#include <darokleim/client.hpp>
#include <optional>
#include <string>

#include "tools/cli/command_line/argument_types.h"

namespace darokleim::cli {

// As given on the command line; empty where not.
struct ConnectionOptions {
  Serial serial;
  HostPath adb;
  Seconds timeout;  // 0: none
};

class Connection {
 public:
  // The limit in time begins now. Connects to nothing yet. `may_start_server`: where no server answers, adb starts one.
  explicit Connection(const ConnectionOptions& options, bool may_start_server = true);

  dk::Client& client();

  // The named one; without a name, that of ANDROID_SERIAL; without that, the only one that is ready. Throws NoDeviceError
  // or UsageError with a list of the devices when none or several are.
  const dk::Device& phone();

  // For the next call: the cancel token of Ctrl-C, and what is left of the limit in time.
  dk::Limits limits() const;
  // Why the last call of `error` failed where it can be said better with what is known here, for example which devices
  // are attached instead. Never throws; the error's own text otherwise.
  std::string TextOf(const dk::Error& error);

 private:
  std::string ChosenSerial();
  std::string TheOnlyReady();

  ConnectionOptions options_;
  bool may_start_server_;
  std::optional<std::chrono::steady_clock::time_point> deadline_;
  std::optional<std::string> reason_for_no_adb_;
  std::optional<dk::Client> client_;
  std::optional<dk::Device> phone_;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_CONNECTION_CONNECTION_H

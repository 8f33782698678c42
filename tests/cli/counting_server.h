// An adb server between the tool and the simulated phones that notes what it is asked.
#ifndef DAROKLEIM_TESTS_CLI_COUNTING_SERVER_H
#define DAROKLEIM_TESTS_CLI_COUNTING_SERVER_H

#include <mutex>
#include <string>
#include <vector>

#include "tests/support/scripted_server.h"

namespace darokleim::cli {

class CountingServer {
 public:
  // In front of the server on that port of this computer.
  explicit CountingServer(std::string port);

  std::string port() const { return std::to_string(server_.port()); }
  // The requests since the last call, without those that only choose the device for the next one.
  std::vector<std::string> TakeRequests();

 private:
  void Serve(int client);
  void Note(const std::string& request);

  const std::string port_;
  std::mutex mutex_;
  std::vector<std::string> requests_;
  test::ScriptedServer server_;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TESTS_CLI_COUNTING_SERVER_H

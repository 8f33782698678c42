#ifndef DAROKLEIM_TESTS_SUPPORT_SIMULATED_PHONES_H
#define DAROKLEIM_TESTS_SUPPORT_SIMULATED_PHONES_H

#include <memory>
#include <string>

#include "tests/support/process.h"

namespace darokleim::test {

// A server with phones on a port of its own, and the real adb client to talk to it.
class SimulatedPhones {
 public:
  // `phones` as after --phone; `options` are further words of the command line. Throws when they do not start.
  explicit SimulatedPhones(const Words& phones, const Words& options = {});

  // Ends them as Ctrl-C does, so that their temporary folders go too.
  ~SimulatedPhones();

  const std::string& port() const { return port_; }
  HostProcess& process() { return *process_; }

  // Runs adb with these words.
  Outcome Adb(const Words& words, const std::string& input = "") const;
  std::unique_ptr<HostProcess> StartAdb(const Words& words) const;
  // darokleim-phone ctl with these words.
  Outcome Control(const Words& words) const;
  // Where this computer sees the files of a phone. Beside that folder is `state`, what the phone keeps.
  std::string FilesOf(const std::string& serial) const;

 private:
  std::unique_ptr<HostProcess> process_;
  std::string port_;
};

// What every adb of a test gets in its environment to reach the server on this port.
Environment AdbEnvironment(const std::string& port);

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_SIMULATED_PHONES_H

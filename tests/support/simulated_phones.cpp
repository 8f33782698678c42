#include "tests/support/simulated_phones.h"

#include <signal.h>

#include <stdexcept>

namespace darokleim::test {

namespace {

Words Joined(Words first, const Words& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

Words ServerCommand(const Words& phones, const Words& options) {
  Words command = {DAROKLEIM_PHONE_PROGRAM, "--port", "0"};
  for (const std::string& phone : phones) command.insert(command.end(), {"--phone", phone});
  return Joined(command, options);
}

}  // namespace

SimulatedPhones::SimulatedPhones(const Words& phones, const Words& options)
    : process_(std::make_unique<HostProcess>(ServerCommand(phones, options), Environment{})) {
  const std::string prefix = "darokleim-phone: ready on port ";
  const std::string line = process_->ReadLine();
  if (line.rfind(prefix, 0) != 0) {
    throw std::runtime_error("the simulated phones do not start: " + process_->Finish().errors);
  }
  port_ = line.substr(prefix.size());
}

SimulatedPhones::~SimulatedPhones() {
  process_->Signal(SIGTERM);
  process_->Finish();
}

Outcome SimulatedPhones::Adb(const Words& words, const std::string& input) const {
  return RunProgram(Joined({"adb"}, words), AdbEnvironment(port_), input);
}

std::unique_ptr<HostProcess> SimulatedPhones::StartAdb(const Words& words) const {
  return std::make_unique<HostProcess>(Joined({"adb"}, words), AdbEnvironment(port_));
}

Outcome SimulatedPhones::Control(const Words& words) const {
  return RunProgram(Joined({DAROKLEIM_PHONE_PROGRAM, "ctl", "--port", port_}, words), {});
}

std::string SimulatedPhones::FilesOf(const std::string& serial) const {
  constexpr std::string_view kMark = "\tfiles=";
  const std::string list = Control({"list"}).output;
  const size_t at = list.find(kMark, list.find(serial + '\t'));
  if (at == std::string::npos) throw std::runtime_error("no phone " + serial + " in " + list);
  const size_t begin = at + kMark.size();
  return list.substr(begin, list.find_first_of("\t\n", begin) - begin);
}

Environment AdbEnvironment(const std::string& port) {
  return {{"ANDROID_ADB_SERVER_PORT", port}, {"ANDROID_SERIAL", ""}, {"LC_ALL", "C.UTF-8"}};
}

}  // namespace darokleim::test

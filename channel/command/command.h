// One adb command, parsed from its argument text: the words that adb is started with, and what is known of it.
#ifndef DAROKLEIM_CHANNEL_COMMAND_COMMAND_H
#define DAROKLEIM_CHANNEL_COMMAND_COMMAND_H

#include <string>
#include <string_view>
#include <vector>

#include "channel/command/device_commands.h"

namespace darokleim::channel {

enum class Assist {
  kOff,
  kOn,  // shell commands: paths reach the device's shell whole, line breaks are those that the SDK reads
};

struct Command {
  std::vector<std::string> words;  // without adb itself
  std::string name;                // adb's command word, "shell" for example; empty when there is none
  DeviceCommand device;            // of a shell command
  LineEnds line_ends = LineEnds::kAsPrinted;

  // What decides whether the command has succeeded.
  Answer answer() const { return name == "shell" ? device.answer : Answer::kExitStatus; }
  bool ReportsOnServer() const { return name == "start-server" || name == "kill-server"; }
};

Command ReadCommand(std::string_view arguments, Assist assist);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_COMMAND_COMMAND_H

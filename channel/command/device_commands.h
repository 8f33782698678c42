// What is known of the commands of the device's shell: whether they answer by what they print, which line ends
// the SDK reads their output with, and how it writes their paths.
#ifndef DAROKLEIM_CHANNEL_COMMAND_DEVICE_COMMANDS_H
#define DAROKLEIM_CHANNEL_COMMAND_DEVICE_COMMANDS_H

#include <vector>

#include "channel/command/quoted_operands.h"
#include "channel/command/word_splitter.h"

namespace darokleim::channel {

enum class Answer {
  kText,        // prints its result or its complaint: the text decides, not the exit status
  kExitStatus,  // silent when it succeeds: the exit status is the witness
};

enum class LineEnds {
  kAsPrinted,
  kLf,
  kCrLf,
};

struct DeviceCommand {
  Answer answer = Answer::kExitStatus;
  LineEnds line_ends = LineEnds::kLf;
  OperandForm operands = {};
};

// words: what follows adb's `shell`, one or more commands; the first one counts.
DeviceCommand FindDeviceCommand(const std::vector<Word>& words);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_COMMAND_DEVICE_COMMANDS_H

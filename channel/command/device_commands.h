// What is known of the commands of the device's shell: whether they answer by what they print, which line breaks the
// SDK expects in their output, and how it writes their paths.
#ifndef DAROKLEIM_CHANNEL_COMMAND_DEVICE_COMMANDS_H
#define DAROKLEIM_CHANNEL_COMMAND_DEVICE_COMMANDS_H

#include <vector>

#include "channel/command/quoted_operands.h"
#include "channel/command/word_splitter.h"

namespace darokleim::channel {

enum class Answer {
  kText,  // prints its result or its error: the text decides, not the exit status
  kStatedFailure,  // prints its result, but not always why it failed: the exit status decides unless the text states it
  kExitStatus,  // silent when it succeeds: the exit status decides
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

// words: what follows adb's `shell`, one or more commands. The first one counts.
DeviceCommand FindDeviceCommand(const std::vector<Word>& words);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_COMMAND_DEVICE_COMMANDS_H

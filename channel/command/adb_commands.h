// What is known of adb's own commands.
#ifndef DAROKLEIM_CHANNEL_COMMAND_ADB_COMMANDS_H
#define DAROKLEIM_CHANNEL_COMMAND_ADB_COMMANDS_H

#include <string_view>

#include "channel/command/quoted_operands.h"

namespace darokleim::channel {

// How the SDK writes the paths of an adb command; none for a command without paths.
OperandForm FindAdbOperands(std::string_view command);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_COMMAND_ADB_COMMANDS_H

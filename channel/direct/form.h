// The exact forms of commands that the channel runs without adb.
#ifndef DAROKLEIM_CHANNEL_DIRECT_FORM_H
#define DAROKLEIM_CHANNEL_DIRECT_FORM_H

#include <optional>
#include <span>
#include <string>

#include "channel/command/command.h"

namespace darokleim::channel::direct {

enum class Form {
  kDevices,
  kShell,
  kLogcat,
  kList,
  kPull,
  kPush,
  kForward,
  kReverse,
  kReconnect,
  kReboot,
};

// A command of a known form. Refers to the words of the command it was read from.
struct FormCall {
  Form form = Form::kDevices;
  std::string serial;  // empty for a command to the server
  bool option =
      false;  // the one option that the form has: -a of pull, --sync of push, --remove of the port mappings
  std::span<const std::string> operands;  // what follows the command word and the option
};

// None when the command is not exactly of one of the forms: adb must run it.
std::optional<FormCall> MatchForm(const Command& command);

}  // namespace darokleim::channel::direct

#endif  // DAROKLEIM_CHANNEL_DIRECT_FORM_H

// The argument text of a command as the log shows it.
#ifndef DAROKLEIM_CHANNEL_COMMAND_LOGGED_ARGUMENTS_H
#define DAROKLEIM_CHANNEL_COMMAND_LOGGED_ARGUMENTS_H

#include <string>
#include <string_view>

namespace darokleim::channel {

// The arguments as they are, unless they have the device type a text (`input text …`), which may be a password: then they
// end with *** after that word. Reads the command as the device's shell does, so that quotes around it or another
// command before it make no difference.
std::string LoggedArguments(std::string_view arguments);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_COMMAND_LOGGED_ARGUMENTS_H

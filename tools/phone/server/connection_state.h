#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_CONNECTION_STATE_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_CONNECTION_STATE_H

#include <optional>
#include <string_view>

namespace darokleim::phone {

// What the adb server knows of an attached phone's connection.
enum class ConnectionState {
  kDevice,
  kOffline,
  kUnauthorized,
  kAuthorizing,
  kConnecting,
  kNoPermissions,
  kRecovery,
  kSideload
};

// As the command line has it.
std::string_view NameOf(ConnectionState state);
// As `adb devices` and `adb get-state` have it: a word, or what is wrong.
std::string_view WordsOf(ConnectionState state);
std::optional<ConnectionState> ParseConnectionState(std::string_view name);

// Why a command for a phone in this state is refused; empty when it is not.
std::string_view RefusalOf(ConnectionState state);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_CONNECTION_STATE_H

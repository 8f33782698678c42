// Ports and sockets of this computer that reach a phone's (forward), and of a phone that reach this computer's
// (reverse). Addresses are adb's: tcp:PORT, tcp:0 for any free one, localabstract:NAME, jdwp:PID …
#ifndef DAROKLEIM_ADB_PORTS_H
#define DAROKLEIM_ADB_PORTS_H

#include <string>
#include <string_view>

#include "adb/transport.h"

namespace darokleim::adb {

enum class Rebind {
  kAllow,   // an existing one of the same listening address is replaced
  kRefuse,  // kRefused where there is one
};

// The port that is listened on, as the server's text; empty where it does not say it (it must for tcp:0).
Result<std::string> AddForward(const ServerAddress& server, const DeviceSelector& device,
                               std::string_view local, std::string_view remote, Rebind rebind,
                               const Limits& limits);
Status RemoveForward(const ServerAddress& server, const DeviceSelector& device, std::string_view local,
                     const Limits& limits);
// Those of every phone.
Status RemoveAllForwards(const ServerAddress& server, const Limits& limits);
// "SERIAL LOCAL REMOTE\n" for each, of every phone.
Result<std::string> QueryForwards(const ServerAddress& server, const Limits& limits);

Result<std::string> AddReverse(const ServerAddress& server, const DeviceSelector& device,
                               std::string_view remote, std::string_view local, Rebind rebind,
                               const Limits& limits);
Status RemoveReverse(const ServerAddress& server, const DeviceSelector& device, std::string_view remote,
                     const Limits& limits);
Status RemoveAllReverses(const ServerAddress& server, const DeviceSelector& device, const Limits& limits);
// "WHERE REMOTE LOCAL\n" for each; the first word has no meaning.
Result<std::string> QueryReverses(const ServerAddress& server, const DeviceSelector& device,
                                  const Limits& limits);

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_PORTS_H

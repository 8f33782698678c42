// Starting an adb server with the caller's adb.
#ifndef DAROKLEIM_CLIENT_SERVER_START_H
#define DAROKLEIM_CLIENT_SERVER_START_H

#include <string>

#include "client/call.h"

namespace darokleim::client {

// Runs `adb start-server` to its end. server: the address as adb's option -L takes it; empty: adb's own choice. That a server
// answers then is for the caller to see.
Status RunStartServer(const std::string& adb_path, const std::string& server, const Limits& limits);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_SERVER_START_H

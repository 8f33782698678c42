// What ends the adb server besides its own command.
#ifndef DAROKLEIM_SRC_CORE_SERVER_CONTROL_H
#define DAROKLEIM_SRC_CORE_SERVER_CONTROL_H

// Kills every process of the host whose line in `ps -ax` holds the word adb, whatever port it listens on:
// port is not looked at. Returns 0.
int KillListenNetProcess(int port);

#endif  // DAROKLEIM_SRC_CORE_SERVER_CONTROL_H

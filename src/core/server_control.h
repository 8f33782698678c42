// Ending the adb server when its own command does not.
#ifndef DAROKLEIM_SRC_CORE_SERVER_CONTROL_H
#define DAROKLEIM_SRC_CORE_SERVER_CONTROL_H

// Sends SIGKILL to every process of the host whose line in `ps -ax` holds the word adb, whatever port it listens on:
// port is ignored. Returns 0.
int KillListenNetProcess(int port);

#endif  // DAROKLEIM_SRC_CORE_SERVER_CONTROL_H

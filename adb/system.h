// What Linux and macOS do differently with sockets and pipes.
#ifndef DAROKLEIM_ADB_SYSTEM_H
#define DAROKLEIM_ADB_SYSTEM_H

#include "base/unique_fd.h"

namespace darokleim::adb {

// A stream socket (AF_INET, AF_INET6 or AF_UNIX) that never blocks, is closed on exec and raises no SIGPIPE when it is
// written to with kSendFlags. Not valid, with errno set, when the system refuses.
base::UniqueFd OpenStreamSocket(int family);

// For send and sendmsg, so that a closed connection is an error and not a signal.
extern const int kSendFlags;

// Both ends are closed on exec. False, with errno set, when the system refuses.
bool OpenPipe(base::UniqueFd* read_end, base::UniqueFd* write_end);

// Sends the acknowledgement of received data now instead of up to 40 ms later, where the system can be asked to. A
// server that sets no TCP_NODELAY keeps the second piece of a small reply back until then.
void AcknowledgeNow(int tcp_socket);

// Whether the system has Unix sockets in an abstract namespace.
extern const bool kHasAbstractSockets;

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_SYSTEM_H

#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_DAEMON_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_DAEMON_H

namespace darokleim::phone {

// The first process of a phone: takes services from the link, runs each in a process of its own, and reaps
// every process of the phone that ends. Returns when the server is gone.
int RunDaemon(bool legacy);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_DAEMON_H

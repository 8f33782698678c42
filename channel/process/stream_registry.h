// All running streams of this process.
#ifndef DAROKLEIM_CHANNEL_PROCESS_STREAM_REGISTRY_H
#define DAROKLEIM_CHANNEL_PROCESS_STREAM_REGISTRY_H

#include "channel/process/stream.h"

namespace darokleim::channel {

// Starts a command and returns: kDelivered when it runs, otherwise the status that says why not; the receiver is then
// never called. arguments may be freed after the call; the flag of cancel must stay valid until the receiver's last call.
// Every stream that still runs is stopped when the library is unloaded or the process exits.
int StartStream(const Settings& settings, const char* arguments, const CancelFlag& cancel,
                const OutputReceiver& receiver);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_STREAM_REGISTRY_H

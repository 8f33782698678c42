// Runs one command to its end and keeps what it printed.
#ifndef DAROKLEIM_CHANNEL_PROCESS_RUN_H
#define DAROKLEIM_CHANNEL_PROCESS_RUN_H

#include "channel/output/output_buffer.h"
#include "channel/process/cancel_flag.h"
#include "channel/settings.h"

namespace darokleim::channel {

// Returns a status of status.h. output holds what is to be handed out unless the status is one of the
// channel's own (kNotInitialised and above).
int Run(const Settings& settings, const char* arguments, const CancelFlag& cancel, OutputBuffer* output);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_RUN_H

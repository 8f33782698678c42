// Runs one command to its end and keeps what it printed.
#ifndef DAROKLEIM_PLATFORM_CHANNEL_RUN_H
#define DAROKLEIM_PLATFORM_CHANNEL_RUN_H

#include "platform/channel/cancel_flag.h"
#include "platform/channel/output_buffer.h"
#include "platform/channel/settings.h"

namespace darokleim::channel {

// Returns a status of status.h. output holds what is to be handed out unless the status is one of the
// channel's own (kNotInitialised and above).
int Run(const Settings& settings, const char* arguments, const CancelFlag& cancel, OutputBuffer* output);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_PLATFORM_CHANNEL_RUN_H

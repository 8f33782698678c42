// Runs one command by running adb, and keeps what adb printed.
#ifndef DAROKLEIM_CHANNEL_PROCESS_RUN_H
#define DAROKLEIM_CHANNEL_PROCESS_RUN_H

#include <string>

#include "channel/command/command.h"
#include "channel/output/output_buffer.h"
#include "channel/process/cancel_flag.h"

namespace darokleim::channel {

// Returns a status of status.h. output holds the answer as adb printed it, without server notices, unless the status
// is one of the channel's own (kNotInitialised and above).
int RunAdb(const std::string& adb_path, const Command& command, const CancelFlag& cancel,
           OutputBuffer* output);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_RUN_H

// Reads what a running adb prints into a sink, until adb has ended or must be ended.
#ifndef DAROKLEIM_CHANNEL_PROCESS_READ_OUTPUT_H
#define DAROKLEIM_CHANNEL_PROCESS_READ_OUTPUT_H

#include "channel/output/output_sink.h"
#include "channel/process/cancel_flag.h"
#include "channel/process/child.h"

namespace darokleim::channel {

enum class ReadingEnd {
  kOutputComplete,  // adb has ended, or has closed its output and cannot be cancelled; everything is in the sink
  kCancelled,       // adb still runs
  kSinkFull,        // adb still runs
};

// output: the reading end of adb's output, which never blocks. An adb server that adb has started may hold the
// other end for as long as it lives: the output is complete when adb has ended and the pipe is drained.
ReadingEnd ReadOutput(Child* child, int output, const CancelFlag& cancel, OutputSink* sink);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_READ_OUTPUT_H

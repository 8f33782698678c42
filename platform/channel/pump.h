// Carries what a running adb prints into a sink, until it has ended or is to end.
#ifndef DAROKLEIM_PLATFORM_CHANNEL_PUMP_H
#define DAROKLEIM_PLATFORM_CHANNEL_PUMP_H

#include "platform/channel/cancel_flag.h"
#include "platform/channel/child.h"
#include "platform/channel/output_sink.h"

namespace darokleim::channel {

enum class PumpResult {
  kEnded,      // adb has ended, or closed its output with nobody to cancel it; everything is in the sink
  kCancelled,  // adb still runs
  kSinkFull,   // adb still runs
};

// output: the reading end of adb's output, which never blocks. An adb server that adb has started may hold the
// other end for as long as it lives: the output is complete when adb has ended and the pipe is drained.
PumpResult Pump(Child* child, int output, const CancelFlag& cancel, OutputSink* sink);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_PLATFORM_CHANNEL_PUMP_H

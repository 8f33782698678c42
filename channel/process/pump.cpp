#include "channel/process/pump.h"

#include "channel/process/pipe_reader.h"

namespace darokleim::channel {

PumpResult Pump(Child* child, int output, const CancelFlag& cancel, OutputSink* sink) {
  PipeReader reader(output, sink);
  bool open = true;
  while (open || cancel.CanBeSet()) {
    if (cancel.IsSet()) return PumpResult::kCancelled;
    const Child::Event event = child->Wait(open ? output : -1, cancel.LongestWait());
    ReadResult result = ReadResult::kNothingYet;
    if (event.ended) {
      result = open ? reader.Drain() : ReadResult::kEnd;
    } else if (event.readable) {
      result = reader.Read();
    }
    if (result == ReadResult::kSinkFull) return PumpResult::kSinkFull;
    if (event.ended) return PumpResult::kEnded;
    if (result == ReadResult::kEnd) open = false;
  }
  return PumpResult::kEnded;
}

}  // namespace darokleim::channel

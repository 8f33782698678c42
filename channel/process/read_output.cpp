#include "channel/process/read_output.h"

#include "channel/process/pipe_reader.h"

namespace darokleim::channel {

ReadingEnd ReadOutput(Child* child, int output, const CancelFlag& cancel, OutputSink* sink) {
  PipeReader reader(output, sink);
  bool open = true;
  while (open || cancel.CanBeSet()) {
    if (cancel.IsSet()) return ReadingEnd::kCancelled;
    const Child::Event event = child->Wait(open ? output : -1, cancel.LongestWait());
    ReadResult result = ReadResult::kNothingYet;
    if (event.ended) {
      result = open ? reader.Drain() : ReadResult::kEnd;
    } else if (event.readable) {
      result = reader.Read();
    }
    if (result == ReadResult::kSinkFull) return ReadingEnd::kSinkFull;
    if (event.ended) return ReadingEnd::kOutputComplete;
    if (result == ReadResult::kEnd) open = false;
  }
  return ReadingEnd::kOutputComplete;
}

}  // namespace darokleim::channel

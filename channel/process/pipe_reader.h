// Reads adb's output from its pipe into a sink, through a relay once there is much of it.
#ifndef DAROKLEIM_CHANNEL_PROCESS_PIPE_READER_H
#define DAROKLEIM_CHANNEL_PROCESS_PIPE_READER_H

#include "channel/output/output_sink.h"
#include "channel/process/pipe_relay.h"

namespace darokleim::channel {

enum class ReadResult { kSome, kNothingYet, kEnd, kSinkFull };

class PipeReader {
 public:
  // output: the reading end, which never blocks.
  PipeReader(int output, OutputSink* sink) : output_(output), sink_(sink) {}

  ReadResult Read();

  // Reads what is in the pipe now, not up to its end: a server that holds the pipe may go on writing.
  ReadResult Drain();

 private:
  ReadResult ReadFrom(int fd, size_t limit);
  ReadResult ReadThroughRelay();

  const int output_;
  OutputSink* const sink_;
  size_t last_count_ = 0;
  PipeRelay relay_;
  bool relay_tried_ = false;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_PIPE_READER_H

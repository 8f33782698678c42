// Reads adb's output from its pipe into a sink, as fast as the system allows when there is much of it.
#ifndef DAROKLEIM_CHANNEL_PROCESS_PIPE_READER_H
#define DAROKLEIM_CHANNEL_PROCESS_PIPE_READER_H

#include "base/unique_fd.h"
#include "channel/output/output_sink.h"

namespace darokleim::channel {

enum class ReadResult { kSome, kNothingYet, kEnd, kSinkFull };

class PipeReader {
 public:
  // output: the reading end, which never blocks.
  PipeReader(int output, OutputSink* sink) : output_(output), sink_(sink) {}

  ReadResult Read();

  // What stands in the pipe now. Not up to its end: a server that holds the pipe may go on writing.
  ReadResult Drain();

 private:
  ReadResult ReadFrom(int fd, size_t limit);

  const int output_;
  OutputSink* const sink_;
  size_t last_count_ = 0;

#if defined(__linux__)
  void PrepareForMuch();
  ReadResult ReadThroughRelay();

  // A second pipe, opened once a command has filled its first. What stands in adb's pipe is moved over (pages
  // change hands, nothing is copied) and read from there. A read holds its pipe's lock while it copies, which
  // keeps adb from writing: this way both copy at the same time.
  base::UniqueFd relay_in_, relay_out_;
  bool much_ = false;
#endif
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_PROCESS_PIPE_READER_H

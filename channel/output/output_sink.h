// Where the output of a command goes while the command runs.
#ifndef DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_SINK_H
#define DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_SINK_H

#include <cstddef>
#include <span>

namespace darokleim::channel {

class OutputSink {
 public:
  // Where the next bytes must be put; empty when the sink cannot take more.
  virtual std::span<char> Room() = 0;
  // Adds the first count bytes of Room() to the output.
  virtual void Commit(size_t count) = 0;

 protected:
  ~OutputSink() = default;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_SINK_H

// Where the output of a command goes while it runs.
#ifndef DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_SINK_H
#define DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_SINK_H

#include <cstddef>
#include <span>

namespace darokleim::channel {

class OutputSink {
 public:
  // Where the next bytes are to be put; empty when no more can be taken.
  virtual std::span<char> Room() = 0;
  // So many bytes were put there.
  virtual void Took(size_t count) = 0;

 protected:
  ~OutputSink() = default;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_SINK_H

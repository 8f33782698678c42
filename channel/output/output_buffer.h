// The whole output of a command in one block of memory, which the caller receives without a copy.
#ifndef DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_BUFFER_H
#define DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_BUFFER_H

#include <limits>
#include <string_view>

#include "channel/command/device_commands.h"
#include "channel/output/output_sink.h"
#include "channel/status.h"

namespace darokleim::channel {

// The length must fit an int, and so must the block with its closing zero byte.
constexpr size_t kMostOutput = static_cast<size_t>(std::numeric_limits<int>::max()) - 1;

class OutputBuffer final : public OutputSink {
 public:
  explicit OutputBuffer(size_t most_output = kMostOutput) : most_(most_output) {}
  ~OutputBuffer();
  OutputBuffer(const OutputBuffer&) = delete;
  OutputBuffer& operator=(const OutputBuffer&) = delete;

  std::span<char> Room() override;
  void Commit(size_t count) override { size_ += count; }

  // kDelivered, kTooMuchOutput or kSystemRefused: why there is no more room.
  Status status() const { return status_; }
  std::string_view text() const { return {data_, size_}; }

  void RemoveFirst(size_t count);
  void ConvertLineEnds(LineEnds line_ends);

  // Gives the block to the caller: text() followed by a zero byte, to be freed by FreeBlock. Null when there is no
  // memory.
  char* Release();

 private:
  bool Reserve(size_t capacity);

  char* data_ = nullptr;
  size_t size_ = 0;
  size_t capacity_ = 0;
  const size_t most_;
  Status status_ = kDelivered;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_BUFFER_H

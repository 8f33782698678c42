#include "channel/output/output_buffer.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "channel/output/line_ends.h"
#include "channel/output/output_block.h"

namespace darokleim::channel {
namespace {

constexpr size_t kFirstCapacity = 64 * 1024;

}  // namespace

OutputBuffer::~OutputBuffer() {
  FreeBlock(data_);
}

std::span<char> OutputBuffer::Room() {
  // There is room for one byte more than allowed: it shows that there is too much output.
  if (size_ > most_) status_ = kTooMuchOutput;
  if (status_ != kDelivered) return {};
  if (size_ == capacity_ && !Reserve(std::min(std::max(2 * capacity_, kFirstCapacity), most_ + 1))) return {};
  return {data_ + size_, capacity_ - size_};
}

bool OutputBuffer::Reserve(size_t capacity) {
  const Block block = GrowBlock(data_, capacity, most_ + 1);
  if (block.data == nullptr) {
    status_ = kSystemRefused;
    return false;
  }
  data_ = block.data;
  capacity_ = block.capacity;
  return true;
}

void OutputBuffer::RemoveFirst(size_t count) {
  if (count == 0) return;
  size_ -= count;
  memmove(data_, data_ + count, size_);
}

void OutputBuffer::ConvertLineEnds(LineEnds line_ends) {
  if (line_ends == LineEnds::kAsPrinted || size_ == 0) return;
  size_ = CollapseLineEnds(data_, size_);
  if (line_ends == LineEnds::kLf) return;

  const size_t line_feeds = CountLineFeeds(data_, size_);
  if (size_ + line_feeds > most_) {
    status_ = kTooMuchOutput;
  } else if (size_ + line_feeds <= capacity_ || Reserve(size_ + line_feeds)) {
    ExpandLineEnds(data_, size_, line_feeds);
    size_ += line_feeds;
  }
}

char* OutputBuffer::Release() {
  if (size_ > most_) status_ = kTooMuchOutput;
  if (status_ != kDelivered) return nullptr;
  if (size_ == capacity_ && !Reserve(size_ + 1)) return nullptr;
  data_[size_] = '\0';
  return ShrinkBlock(std::exchange(data_, nullptr), size_ + 1);
}

}  // namespace darokleim::channel

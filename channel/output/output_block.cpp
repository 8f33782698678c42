#include "channel/output/output_block.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "channel/output/large_memory.h"

namespace darokleim::channel {
namespace {

constexpr size_t kLargestOnHeap = 4 * 1024 * 1024;

struct alignas(std::max_align_t) Header {
  LargeMemory memory;   // this header included; empty when the block is on the heap
  size_t capacity = 0;  // bytes after this header
};

Header* HeaderOf(char* data) {
  return reinterpret_cast<Header*>(data) - 1;
}
char* DataOf(Header* header) {
  return reinterpret_cast<char*>(header + 1);
}

bool IsOnHeap(char* data) {
  return HeaderOf(data)->memory.begin == nullptr;
}

Block ResizeOnHeap(char* data, size_t size) {
  void* const memory = realloc(data == nullptr ? nullptr : HeaderOf(data), sizeof(Header) + size);
  if (memory == nullptr) return {};
  auto* const header = new (memory) Header{.memory = {}, .capacity = size};
  return {DataOf(header), size};
}

Block NewLargeBlock(size_t most) {
  const LargeMemory memory = TakeLargeMemory(sizeof(Header) + most);
  if (memory.begin == nullptr) return {};
  auto* const header = new (memory.begin) Header{.memory = memory, .capacity = most};
  return {DataOf(header), most};
}

}  // namespace

Block GrowBlock(char* data, size_t size, size_t most) {
  if (size <= kLargestOnHeap) return ResizeOnHeap(data, size);
  const Block large = NewLargeBlock(most);
  if (large.data == nullptr) return ResizeOnHeap(data, size);
  if (data != nullptr) {
    memcpy(large.data, data, HeaderOf(data)->capacity);
    FreeBlock(data);
  }
  return large;
}

char* ShrinkBlock(char* data, size_t size) {
  if (!IsOnHeap(data)) return data;  // address space alone: nothing after the last byte was touched
  const Block smaller = ResizeOnHeap(data, size);
  return smaller.data == nullptr ? data : smaller.data;
}

void FreeBlock(char* data) {
  if (data == nullptr) return;
  if (IsOnHeap(data)) {
    free(HeaderOf(data));
  } else {
    ReturnLargeMemory(HeaderOf(data)->memory);
  }
}

}  // namespace darokleim::channel

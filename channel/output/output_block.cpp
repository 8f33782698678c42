#include "channel/output/output_block.h"

#if defined(__linux__)
#include <sys/mman.h>
#endif

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace darokleim::channel {
namespace {

struct alignas(std::max_align_t) Header {
  size_t mapped = 0;    // bytes of address space, this header included; 0 when the block comes from malloc
  size_t capacity = 0;  // bytes behind this header
};

Header* HeaderOf(char* data) {
  return reinterpret_cast<Header*>(data) - 1;
}
char* DataOf(Header* header) {
  return reinterpret_cast<char*>(header + 1);
}

Block ResizeOnHeap(char* data, size_t size) {
  void* const memory = realloc(data == nullptr ? nullptr : HeaderOf(data), sizeof(Header) + size);
  if (memory == nullptr) return {};
  auto* const header = static_cast<Header*>(memory);
  *header = {.mapped = 0, .capacity = size};
  return {DataOf(header), size};
}

#if defined(__linux__)

// Larger blocks are mapped: growing then takes no copying and no moving of page tables, and the memory comes in
// huge pages, which saves most of the time that fresh memory costs.
constexpr size_t kLargestOnHeap = 4 * 1024 * 1024;
constexpr size_t kHugePage = 2 * 1024 * 1024;

size_t RoundUp(size_t size, size_t unit) {
  return (size + unit - 1) / unit * unit;
}

Block MapBlock(size_t most) {
  const size_t wanted = RoundUp(sizeof(Header) + most, kHugePage);
  void* const memory = mmap(nullptr, wanted + kHugePage, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) return {};
  const auto address = reinterpret_cast<uintptr_t>(memory);
  const size_t before = RoundUp(address, kHugePage) - address;
  char* const begin = static_cast<char*>(memory) + before;
  if (before > 0) munmap(memory, before);
  if (before < kHugePage) munmap(begin + wanted, kHugePage - before);
  madvise(begin, wanted, MADV_HUGEPAGE);

  auto* const header = reinterpret_cast<Header*>(begin);
  *header = {.mapped = wanted, .capacity = wanted - sizeof(Header)};
  return {DataOf(header), most};
}

// Keeps the last large block that was given back: memory that is there already takes a third of the time, or
// less where a virtual machine must ask its host for each page. The system may take the pages whenever it
// needs them (MADV_FREE); until then they count as this process's.
class KeptMapping {
 public:
  ~KeptMapping() { Unmap(kept_.exchange(nullptr)); }

  Block Take(size_t most) {
    Header* const header = kept_.exchange(nullptr);
    if (header == nullptr) return {};
    if (header->capacity >= most) return {DataOf(header), most};
    Unmap(header);
    return {};
  }

  void Keep(Header* header) {
    char* const begin = reinterpret_cast<char*>(header);
    madvise(begin + kHugePage, header->mapped - kHugePage, MADV_FREE);
    Unmap(kept_.exchange(header));
  }

 private:
  static void Unmap(Header* header) {
    if (header != nullptr) munmap(header, header->mapped);
  }

  std::atomic<Header*> kept_ = nullptr;
};

KeptMapping kept_mapping;

Block TakeMapping(size_t most) {
  const Block kept = kept_mapping.Take(most);
  return kept.data != nullptr ? kept : MapBlock(most);
}

#endif

}  // namespace

#if defined(__linux__)

Block GrowBlock(char* data, size_t size, size_t most) {
  if (size <= kLargestOnHeap) return ResizeOnHeap(data, size);
  const Block mapped = TakeMapping(most);
  if (mapped.data == nullptr) return ResizeOnHeap(data, size);
  if (data != nullptr) {
    memcpy(mapped.data, data, HeaderOf(data)->capacity);
    FreeBlock(data);
  }
  return mapped;
}

char* ShrinkBlock(char* data, size_t size) {
  if (HeaderOf(data)->mapped > 0)
    return data;  // address space alone: nothing behind the last byte was touched
  const Block smaller = ResizeOnHeap(data, size);
  return smaller.data == nullptr ? data : smaller.data;
}

void FreeBlock(char* data) {
  if (data == nullptr) return;
  Header* const header = HeaderOf(data);
  if (header->mapped > 0) {
    kept_mapping.Keep(header);
  } else {
    free(header);
  }
}

#else

Block GrowBlock(char* data, size_t size, size_t) {
  return ResizeOnHeap(data, size);
}

char* ShrinkBlock(char* data, size_t size) {
  const Block smaller = ResizeOnHeap(data, size);
  return smaller.data == nullptr ? data : smaller.data;
}

void FreeBlock(char* data) {
  if (data != nullptr) free(HeaderOf(data));
}

#endif

}  // namespace darokleim::channel

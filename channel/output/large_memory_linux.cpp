#include <sys/mman.h>

#include <atomic>
#include <cstdint>
#include <new>

#include "channel/output/large_memory.h"

namespace darokleim::channel {
namespace {

constexpr size_t kHugePage = 2 * 1024 * 1024;

size_t RoundUp(size_t size, size_t unit) {
  return (size + unit - 1) / unit * unit;
}

LargeMemory Map(size_t size) {
  const size_t wanted = RoundUp(size, kHugePage);
  void* const memory = mmap(nullptr, wanted + kHugePage, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) return {};
  const auto address = reinterpret_cast<uintptr_t>(memory);
  const size_t before = RoundUp(address, kHugePage) - address;
  char* const begin = static_cast<char*>(memory) + before;
  if (before > 0) munmap(memory, before);
  if (before < kHugePage) munmap(begin + wanted, kHugePage - before);
  madvise(begin, wanted, MADV_HUGEPAGE);
  return {begin, wanted};
}

// The last large piece of memory that was returned, for the next output: memory that is already there takes a third
// of the time, or less where a virtual machine must ask its host for each page. The system may take the pages
// whenever it needs them (MADV_FREE); until then they count as this process's.
class KeptMemory {
 public:
  ~KeptMemory() { Unmap(kept_.exchange(nullptr)); }

  LargeMemory Take(size_t size) {
    LargeMemory* const kept = kept_.exchange(nullptr);
    if (kept == nullptr) return {};
    if (kept->size >= size) return *kept;
    Unmap(kept);
    return {};
  }

  void Keep(LargeMemory memory) {
    madvise(memory.begin + kHugePage, memory.size - kHugePage, MADV_FREE);
    Unmap(kept_.exchange(new (memory.begin) LargeMemory(memory)));
  }

 private:
  static void Unmap(const LargeMemory* kept) {
    if (kept != nullptr) munmap(kept->begin, kept->size);
  }

  std::atomic<LargeMemory*> kept_ = nullptr;  // the description is in the memory that it describes
};

KeptMemory kept_memory;

}  // namespace

LargeMemory TakeLargeMemory(size_t size) {
  const LargeMemory kept = kept_memory.Take(size);
  return kept.begin != nullptr ? kept : Map(size);
}

void ReturnLargeMemory(LargeMemory memory) {
  kept_memory.Keep(memory);
}

}  // namespace darokleim::channel

#include "tests/support/failing_allocation.h"

#if defined(__APPLE__)
#include <malloc/malloc.h>
#else
#include <malloc.h>
#endif

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

// Allocations that still succeed before the one that fails; negative: all do.
std::atomic<long> left{-1};
std::atomic<long> live{0};
std::atomic<long> held{0};
std::atomic<long> most_held{0};

long SizeOf(void* memory) {
#if defined(__APPLE__)
  return static_cast<long>(malloc_size(memory));
#else
  return static_cast<long>(malloc_usable_size(memory));
#endif
}

void Free(void* memory) {
  if (memory != nullptr) {
    live.fetch_sub(1, std::memory_order_relaxed);
    held.fetch_sub(SizeOf(memory), std::memory_order_relaxed);
  }
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  if (left.load(std::memory_order_relaxed) >= 0 && left.fetch_sub(1) == 0) throw std::bad_alloc();
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  live.fetch_add(1, std::memory_order_relaxed);
  const long now = held.fetch_add(SizeOf(memory), std::memory_order_relaxed) + SizeOf(memory);
  long most = most_held.load(std::memory_order_relaxed);
  while (most < now && !most_held.compare_exchange_weak(most, now, std::memory_order_relaxed)) {
  }
  return memory;
}

void operator delete(void* memory) noexcept {
  Free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  Free(memory);
}

namespace darokleim::test {

FailingAllocation::FailingAllocation(long number) {
  left = number;
}

FailingAllocation::~FailingAllocation() {
  left = -1;
}

bool FailingAllocation::HasFailed() const {
  return left < 0;
}

long LiveAllocations() {
  return live;
}

MostBytesHeld::MostBytesHeld() : before_(held) {
  most_held = before_;
}

long MostBytesHeld::bytes() const {
  return most_held - before_;
}

}  // namespace darokleim::test

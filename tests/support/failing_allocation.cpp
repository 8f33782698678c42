#include "tests/support/failing_allocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

// Allocations that still succeed before the one that fails; negative: all do.
std::atomic<long> left{-1};
std::atomic<long> live{0};

void Free(void* memory) {
  if (memory != nullptr) live.fetch_sub(1, std::memory_order_relaxed);
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  if (left.load(std::memory_order_relaxed) >= 0 && left.fetch_sub(1) == 0) throw std::bad_alloc();
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  live.fetch_add(1, std::memory_order_relaxed);
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

}  // namespace darokleim::test

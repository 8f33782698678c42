#include "support/failing_allocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

// Allocations that still succeed before the one that fails; negative: all do.
std::atomic<long> left{-1};

}  // namespace

void* operator new(std::size_t size) {
  if (left.load(std::memory_order_relaxed) >= 0 && left.fetch_sub(1) == 0) throw std::bad_alloc();
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace darokleim::testing {

FailingAllocation::FailingAllocation(long number) {
  left = number;
}

FailingAllocation::~FailingAllocation() {
  left = -1;
}

bool FailingAllocation::HasFailed() const {
  return left < 0;
}

}  // namespace darokleim::testing

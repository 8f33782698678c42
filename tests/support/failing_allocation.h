// Memory that runs out at a chosen moment. For programs that link failing_allocation.cpp, which replaces operator new
// for everything in them, shared libraries included.
#ifndef DAROKLEIM_TESTS_SUPPORT_FAILING_ALLOCATION_H
#define DAROKLEIM_TESTS_SUPPORT_FAILING_ALLOCATION_H

namespace darokleim::test {

// While it lives, one allocation fails, in whichever thread: the one with this number, the next being 0.
class FailingAllocation {
 public:
  explicit FailingAllocation(long number);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  // False when there were fewer allocations.
  bool HasFailed() const;
};

// How many blocks have been asked for and not been given back.
long LiveAllocations();

// The largest number of bytes that blocks have held at once since the object was made, besides those held before.
class MostBytesHeld {
 public:
  MostBytesHeld();

  long bytes() const;

 private:
  long before_;
};

// Calls `trial` again and again, with another allocation failing each time, until it makes fewer. Returns how many it
// makes.
template <typename Trial>
long WithEachAllocationFailing(Trial trial) {
  for (long number = 0;; ++number) {
    if (!trial(number)) return number;
  }
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_FAILING_ALLOCATION_H

// How much memory a piece of work needs.
#ifndef DAROKLEIM_BENCH_PEAK_MEMORY_H
#define DAROKLEIM_BENCH_PEAK_MEMORY_H

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <cstdlib>

#include "bench/report.h"

namespace darokleim::bench {

// Each run begins with a heap that the one before did not leave in its own order.
inline void TidyHeap() {
#if defined(__GLIBC__)
  malloc_trim(0);
#endif
}

// The most memory that this process has had at a time, in bytes.
inline double PeakBytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
#if defined(__APPLE__)
  constexpr double kUnit = 1;
#else
  constexpr double kUnit = 1024;
#endif
  return kUnit * static_cast<double>(usage.ru_maxrss);
}

// Bytes of memory that a process comes to use while it runs the function, a process of its own.
template <typename Function>
double PeakBytesOf(Function function) {
  TidyHeap();
  int ends[2];
  if (pipe(ends) != 0) std::abort();
  const pid_t child = fork();
  if (child == 0) {
    const double before = PeakBytes();
    function();
    const double bytes = PeakBytes() - before;
    _exit(write(ends[1], &bytes, sizeof bytes) == sizeof bytes ? 0 : 1);
  }
  double bytes = 0;
  if (child < 0 || read(ends[0], &bytes, sizeof bytes) != sizeof bytes) std::abort();
  waitpid(child, nullptr, 0);
  close(ends[0]);
  close(ends[1]);
  return bytes;
}

// What the two need at their highest.
template <typename Ours, typename Floor>
Row CompareMemory(const Comparison& comparison, Ours ours, Floor floor) {
  const double our_bytes = PeakBytesOf(ours);
  const double floor_bytes = PeakBytesOf(floor);
  return {comparison.name,
          comparison.against,
          comparison.goal,
          our_bytes,
          floor_bytes,
          our_bytes / floor_bytes,
          "B"};
}

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_PEAK_MEMORY_H

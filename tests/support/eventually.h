// Waiting for what happens in its own time.
#ifndef DAROKLEIM_TESTS_SUPPORT_EVENTUALLY_H
#define DAROKLEIM_TESTS_SUPPORT_EVENTUALLY_H

#include <chrono>
#include <thread>

namespace darokleim::test {

// Tries again for up to five seconds.
template <typename Condition>
bool Eventually(const Condition& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_EVENTUALLY_H

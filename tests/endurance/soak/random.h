#ifndef DAROKLEIM_TESTS_ENDURANCE_SOAK_RANDOM_H
#define DAROKLEIM_TESTS_ENDURANCE_SOAK_RANDOM_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <random>

namespace darokleim::soak {

// One for each thread, so that its choices depend on the seed alone.
class Random {
 public:
  Random(std::uint64_t seed, std::uint64_t stream) : engine_(seed * 1000 + stream) {}

  std::uint64_t Next() { return engine_(); }
  std::size_t Below(std::size_t count) { return static_cast<std::size_t>(engine_() % count); }
  bool OneIn(std::size_t count) { return Below(count) == 0; }
  std::chrono::milliseconds Between(std::chrono::milliseconds least, std::chrono::milliseconds most) {
    const auto span = static_cast<std::size_t>((most - least).count()) + 1;
    return least + std::chrono::milliseconds(static_cast<std::int64_t>(Below(span)));
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace darokleim::soak

#endif  // DAROKLEIM_TESTS_ENDURANCE_SOAK_RANDOM_H

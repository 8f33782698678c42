// Shared by all fuzz targets.
#ifndef DAROKLEIM_TESTS_FUZZ_FUZZ_H
#define DAROKLEIM_TESTS_FUZZ_FUZZ_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace darokleim::sdk {

// Aborts: the fuzzer then keeps the input.
inline void Require(bool holds) {
  if (!holds) std::abort();
}

inline std::string Text(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace darokleim::sdk

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

#endif  // DAROKLEIM_TESTS_FUZZ_FUZZ_H

#ifndef DAROKLEIM_TESTS_SUPPORT_OPEN_DESCRIPTORS_H
#define DAROKLEIM_TESTS_SUPPORT_OPEN_DESCRIPTORS_H

#include <filesystem>

namespace darokleim::test {

// How many descriptors this process has open, one more than it seems: that of the listing itself.
inline size_t OpenDescriptors() {
  const std::filesystem::directory_iterator all("/dev/fd");
  return static_cast<size_t>(std::distance(begin(all), end(all)));
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_OPEN_DESCRIPTORS_H

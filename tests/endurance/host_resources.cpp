#include "tests/endurance/host_resources.h"

#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace darokleim::endurance {
namespace {

namespace fs = std::filesystem;

std::size_t EntryCount(const char* folder) {
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder)) ++count;
  return count;
}

std::size_t ChildCount() {
  std::size_t count = 0;
  for (const auto& thread : fs::directory_iterator("/proc/self/task")) {
    std::ifstream children(thread.path() / "children");
    count += static_cast<std::size_t>(
        std::distance(std::istream_iterator<std::string>(children), std::istream_iterator<std::string>()));
  }
  return count;
}

}  // namespace

HostResources CountHostResources() {
  const struct mallinfo2 heap = mallinfo2();
  return {EntryCount("/proc/self/fd"), EntryCount("/proc/self/task"), ChildCount(),
          heap.uordblks + heap.hblkhd};
}

}  // namespace darokleim::endurance

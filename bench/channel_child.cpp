// Takes the place of adb in the channel's benchmarks: prints as many bytes as its last word says.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  size_t left = std::strtoull(argv[argc - 1], nullptr, 10);
  const std::vector<char> piece(std::min<size_t>(left, 64 * 1024), 'x');
  while (left > 0) {
    const ssize_t count = write(STDOUT_FILENO, piece.data(), std::min(left, piece.size()));
    if (count < 0) return 1;
    left -= static_cast<size_t>(count);
  }
  return 0;
}

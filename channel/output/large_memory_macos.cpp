#include "channel/output/large_memory.h"

namespace darokleim::channel {

LargeMemory TakeLargeMemory(size_t) {
  return {};
}

void ReturnLargeMemory(LargeMemory) {}

}  // namespace darokleim::channel

// Memory for large outputs, taken from the system in one piece.
#ifndef DAROKLEIM_CHANNEL_OUTPUT_LARGE_MEMORY_H
#define DAROKLEIM_CHANNEL_OUTPUT_LARGE_MEMORY_H

#include <cstddef>

namespace darokleim::channel {

struct LargeMemory {
  char* begin = nullptr;  // null when there is none
  size_t size = 0;        // bytes of address space; a page costs memory once it is touched
};

// At least size bytes. On Linux they come in huge pages, which saves most of the time that fresh memory costs, and
// growing into them takes no copying. On macOS there is none: the heap serves every size there.
LargeMemory TakeLargeMemory(size_t size);

// May keep the memory for the next output. The system can take its pages whenever it needs them.
void ReturnLargeMemory(LargeMemory memory);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_OUTPUT_LARGE_MEMORY_H

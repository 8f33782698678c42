// The memory that holds a command's output, also in the hands of the caller.
#ifndef DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_BLOCK_H
#define DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_BLOCK_H

#include <cstddef>

namespace darokleim::channel {

// A block is identified by the address of its first byte; its description is stored before that byte.

struct Block {
  char* data = nullptr;  // null when there is no memory
  size_t capacity = 0;
};

// Makes a block (from null) or enlarges one to at least size bytes and keeps its content; it may move. When there is no
// memory it is left as it was. most: the largest size that it may ever need. A block that becomes large gets that much
// address space at once.
Block GrowBlock(char* data, size_t size, size_t most);

// Frees what a block has beyond size bytes; it may move.
char* ShrinkBlock(char* data, size_t size);

void FreeBlock(char* data);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_BLOCK_H

// The memory that a command's output is collected in and handed out in.
#ifndef DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_BLOCK_H
#define DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_BLOCK_H

#include <cstddef>

namespace darokleim::channel {

// A block is known by the address of its first byte alone; what it is made of stands before that byte.

struct Block {
  char* data = nullptr;  // null when there is no memory
  size_t capacity = 0;
};

// Makes a block (of null) or makes one larger, to at least size bytes, and keeps what it holds; it may move. It
// is left as it was when there is no memory. most: what it may ever have to hold, at least size. A block that
// gets large is given so much address space at once.
Block GrowBlock(char* data, size_t size, size_t most);

// Gives back what a block has beyond size bytes; it may move.
char* ShrinkBlock(char* data, size_t size);

void FreeBlock(char* data);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_OUTPUT_OUTPUT_BLOCK_H

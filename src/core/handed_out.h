// Blocks that exported functions hand to their caller, who gives them back with AdbFreeResource.
#ifndef DAROKLEIM_SRC_CORE_HANDED_OUT_H
#define DAROKLEIM_SRC_CORE_HANDED_OUT_H

#include <string_view>

namespace darokleim::sdk {

// A new block with the text and a terminating zero.
char* NewTerminatedBlock(std::string_view text);

// Hands such a block out, with the length of the text. Throws std::length_error, and writes nothing, when an
// int cannot count it.
void HandOut(std::string_view text, char** block, int* length);

// A new block with the bytes alone; the few functions that hand out such a block say so in their interface.
char* NewBlock(std::string_view bytes);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_HANDED_OUT_H

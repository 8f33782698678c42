#ifndef DAROKLEIM_SRC_CORE_CALLER_OUTPUT_H
#define DAROKLEIM_SRC_CORE_CALLER_OUTPUT_H

// Texts for callers: in buffers that they bring, and in blocks that they give back with AdbFreeResource.

#include <string_view>

// Overwrites the zero bytes, tabs, line feeds, carriage returns and spaces at the end of the length bytes at
// text with zeros; other white space, such as the form feed, stays. Returns the address of the last byte kept: one
// before text when none was.
char* RemoveEndingSpace(char* text, int length);

namespace darokleim::sdk {

// Copies a text into a caller's buffer of capacity bytes, ends it with a zero and removes its ending space.
// Copies no more than the first `most` bytes. A buffer without room is left alone.
//
// Returns ADB_RESULT_OK, or ADB_RESULT_BUFFER_TOO_SMALL for a text longer than the capacity. A text of exactly
// that length loses its last byte without an error, on purpose: what devices print ends in a line break, and
// applications size their buffers for the value alone.
int FillCallerBuffer(std::string_view text, char* buffer, int capacity,
                     std::size_t most = std::string_view::npos);

// A new block with the text and a terminating zero.
char* NewTerminatedBlock(std::string_view text);

// Hands such a block out, with the length of the text. Throws std::length_error, and writes nothing, when an
// int cannot count it.
void HandOut(std::string_view text, char** block, int* length);

// A new block with the bytes alone; the few functions that hand out such a block say so in their interface.
char* NewBlock(std::string_view bytes);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_CALLER_OUTPUT_H

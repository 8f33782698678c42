// Blocks that exported functions hand to their caller, who gives them back with AdbFreeResource.
#ifndef DAROKLEIM_SRC_CORE_HANDED_OUT_H
#define DAROKLEIM_SRC_CORE_HANDED_OUT_H

#include <string_view>

namespace darokleim {

// A new block with the text and a terminating zero.
char* NewTerminatedBlock(std::string_view text);

}  // namespace darokleim

#endif  // DAROKLEIM_SRC_CORE_HANDED_OUT_H

// Caller buffers whose size an interface takes and never reads.
#ifndef DAROKLEIM_SRC_APPS_UNCHECKED_BUFFER_H
#define DAROKLEIM_SRC_APPS_UNCHECKED_BUFFER_H

#include <cstring>
#include <optional>
#include <string_view>

#include "darokleim.h"
#include "src/core/text.h"

namespace darokleim::sdk {

// Writes the text and a terminating zero, however long it is: callers bring the room for the longest there
// can be. Behind a zero byte in the text only zeros follow.
inline void FillUncheckedBuffer(std::string_view text, char* buffer) {
  std::strncpy(buffer, text.data(), text.size());
  buffer[text.size()] = '\0';
}

// Writes what is found in the first line of the output that has it. Returns ADB_RESULT_OK, or
// ADB_RESULT_NOT_FOUND, the buffer untouched, when no line has it.
template <typename Find>
int FillWithFirstFound(std::string_view output, Find find, char* buffer) {
  int code = ADB_RESULT_NOT_FOUND;
  ForEachPiece(output, "\n", [&](std::string_view line) {
    const std::optional<std::string_view> found = find(line);
    if (!found) return true;
    FillUncheckedBuffer(*found, buffer);
    code = ADB_RESULT_OK;
    return false;
  });
  return code;
}

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_APPS_UNCHECKED_BUFFER_H

// Caller buffers whose size an interface takes and never reads.
#ifndef DAROKLEIM_SRC_APPS_UNCHECKED_BUFFER_H
#define DAROKLEIM_SRC_APPS_UNCHECKED_BUFFER_H

#include <cstring>
#include <string_view>

namespace darokleim {

// Writes the text and a terminating zero, however long it is: callers bring the room for the longest there
// can be. Behind a zero byte in the text only zeros follow.
inline void FillUncheckedBuffer(std::string_view text, char* buffer) {
  std::strncpy(buffer, text.data(), text.size());
  buffer[text.size()] = '\0';
}

}  // namespace darokleim

#endif  // DAROKLEIM_SRC_APPS_UNCHECKED_BUFFER_H

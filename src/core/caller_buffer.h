// Texts for the buffers that callers bring.
#ifndef DAROKLEIM_SRC_CORE_CALLER_BUFFER_H
#define DAROKLEIM_SRC_CORE_CALLER_BUFFER_H

#include <string_view>

// Overwrites the zero bytes, tabs, line feeds, carriage returns and blanks at the end of the length bytes at
// text with zeros; other blanks, such as the form feed, stay. Returns the address of the last byte kept: one
// before text when none was.
char* RemoveEndingSpace(char* text, int length);

namespace darokleim::sdk {

// Copies a text into a caller's buffer of capacity bytes, ends it with a zero and removes its ending space.
// Copies no more than the first `most` bytes. A buffer without room is left alone.
//
// Returns ADB_RESULT_OK, or ADB_RESULT_BUFFER_TOO_SMALL for a text longer than the capacity. A text of just
// that length loses its last byte and is no error, on purpose: what devices print ends in a line end, and
// applications size their buffers for the value alone.
int FillCallerBuffer(std::string_view text, char* buffer, int capacity,
                     std::size_t most = std::string_view::npos);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_CALLER_BUFFER_H

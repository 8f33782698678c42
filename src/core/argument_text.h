// Argument texts for the command channel: the words that follow "adb", formatted as by printf.
#ifndef DAROKLEIM_SRC_CORE_ARGUMENT_TEXT_H
#define DAROKLEIM_SRC_CORE_ARGUMENT_TEXT_H

#include <cstddef>
#include <string>

#include "src/platform/log_library.h"

namespace darokleim::sdk {

// The whole text. Throws std::length_error for more than INT_MAX bytes.
std::string Measured(const char* format, ...) DAROKLEIM_PRINTF_LIKE(1, 2);

// At most capacity - 1 bytes; the rest is dropped silently. The interface of some commands has such a limit:
// applications rely on what a longer command does.
std::string Cut(std::size_t capacity, const char* format, ...) DAROKLEIM_PRINTF_LIKE(2, 3);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_ARGUMENT_TEXT_H

// The log as the SDK and the command channel see it. The one of this tree is in log/; any library with these two
// symbols can replace it.
#ifndef DAROKLEIM_SRC_PLATFORM_LOG_LIBRARY_H
#define DAROKLEIM_SRC_PLATFORM_LOG_LIBRARY_H

#ifdef __cplusplus
extern "C" {
#else
#include <stdbool.h>
#endif

#if defined(__GNUC__)
#define DAROKLEIM_PRINTF_LIKE(format_index, first) __attribute__((format(printf, format_index, first)))
#else
#define DAROKLEIM_PRINTF_LIKE(format_index, first)
#endif

// Opens the log file of a module; false when it could not be opened. A module that is opened a second time
// keeps its first file.
bool InitLogEx(const void* log_context, const char* module, const char* log_file_path);

// Writes one line to the log of a module. Levels: 0 detailed trace, 1 progress and outcomes, 2 echo of an
// adb command line, 3 errors. Calls before InitLogEx, or for a module whose file could not be opened, are
// dropped.
void LogEx(const char* module, int level, const char* format, ...) DAROKLEIM_PRINTF_LIKE(3, 4);

#ifdef __cplusplus
}
#endif

#endif  // DAROKLEIM_SRC_PLATFORM_LOG_LIBRARY_H

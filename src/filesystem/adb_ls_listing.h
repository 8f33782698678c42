// The output of adb ls, which asks the device's daemon and not its shell.
#ifndef DAROKLEIM_SRC_FILESYSTEM_ADB_LS_LISTING_H
#define DAROKLEIM_SRC_FILESYSTEM_ADB_LS_LISTING_H

#include <string>
#include <vector>

#include "src/filesystem/file_info.h"

// A record for each entry of the directory dir, directories included, in order: mode, size, time (as seconds
// and as text of the host's time zone) and path. "." and ".." give none; neither does any other name of two
// characters with a dot, such as ".a", which callers have come to rely on. Carriage returns stay in names.
// Throws std::length_error for a negative len.
std::vector<FileInfo> DecodeADBLSOut(const std::string& dir, const char* out, int len);

#endif  // DAROKLEIM_SRC_FILESYSTEM_ADB_LS_LISTING_H

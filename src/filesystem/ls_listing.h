// The output of the device's ls -l.
#ifndef DAROKLEIM_SRC_FILESYSTEM_LS_LISTING_H
#define DAROKLEIM_SRC_FILESYSTEM_LS_LISTING_H

#include <list>

#include "src/filesystem/file_info.h"

// Appends a record (size, path, time as printed) for each regular file; other entries are ignored. Only CR LF ends a
// line, as on phones before Android 7. In recursive output the headers ("/sdcard/DCIM:") say which directory the files
// are in. A line that begins with "-" and cannot be read is printed to standard output; hosts rely on it. Returns
// false for fewer than two lines that are not empty, otherwise true, also when no record was appended. Throws
// std::length_error for a negative len.
bool DecodeLSOut(const char* out, int len, std::list<FileInfo>* files);

#endif  // DAROKLEIM_SRC_FILESYSTEM_LS_LISTING_H

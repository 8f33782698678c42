// The output of the device's ls -l.
#ifndef DAROKLEIM_SRC_FILESYSTEM_LS_LISTING_H
#define DAROKLEIM_SRC_FILESYSTEM_LS_LISTING_H

#include <list>

#include "src/filesystem/file_info.h"

// Appends a record (size, path, time as printed) for each regular file; directories, links and the rest give
// none. Lines end in CR LF only, as phones before Android 7 print them. In recursive output the headers
// ("/sdcard/DCIM:") say which directory the files are in. A line that begins with "-" and cannot be read goes
// to standard output: a trace that hosts have come to know. False when there are fewer than two lines, not
// counting empty ones; true otherwise, also without a record. Throws std::length_error for a negative len.
bool DecodeLSOut(const char* out, int len, std::list<FileInfo>* files);

#endif  // DAROKLEIM_SRC_FILESYSTEM_LS_LISTING_H

// The output of the device's find: one path in each line.
#ifndef DAROKLEIM_SRC_FILESYSTEM_FIND_LISTING_H
#define DAROKLEIM_SRC_FILESYSTEM_FIND_LISTING_H

#include <list>

#include "src/filesystem/file_info.h"

// Appends a record (its path alone) for each line that begins with "/". Lines end in LF, CR LF or CR CR LF.
// Returns
// false when all lines are empty, otherwise true, also when no record was appended. Throws std::length_error for a
// negative len.
bool DecodeFindOut(const char* out, int len, std::list<FileInfo>* files);

#endif  // DAROKLEIM_SRC_FILESYSTEM_FIND_LISTING_H

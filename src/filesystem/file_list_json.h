// Lists of files as JSON documents. Each call, on purpose, also leaves the document in the side file
// "file_list.json" (see SaveBuf).
#ifndef DAROKLEIM_SRC_FILESYSTEM_FILE_LIST_JSON_H
#define DAROKLEIM_SRC_FILESYSTEM_FILE_LIST_JSON_H

#include <list>
#include <string>

#include "src/filesystem/file_info.h"

// {"file_count": 1, "files": [{"file": …, "size": …, "time": …, "utc_timestamp": …}]}: time and utc_timestamp only
// where there is one, size only with_size. No files are null, not an empty array.
std::string serialization_file_list(const std::list<FileInfo>* files, bool with_size);

// {"Dir": [folders], "File": [{"Name": …, "Size": …, "Time": …}], "Name": …}: Dir, File and Time only where there
// is one, Size only with_size. Every file's path begins with root and a slash; folders that hold no file are not
// in the list and so not in the tree. Any depth will do, but each line of JSON is indented by six blanks a folder.
std::string serialization_file_list_keep_folder_structer(const std::list<FileInfo>* files,
                                                         const std::string& root, bool with_size);

#endif  // DAROKLEIM_SRC_FILESYSTEM_FILE_LIST_JSON_H

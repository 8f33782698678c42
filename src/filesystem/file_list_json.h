// Lists of files as JSON documents. Each call also writes the document to the side file "file_list.json" (see
// SaveBuf); applications rely on it.
#ifndef DAROKLEIM_SRC_FILESYSTEM_FILE_LIST_JSON_H
#define DAROKLEIM_SRC_FILESYSTEM_FILE_LIST_JSON_H

#include <list>
#include <string>

#include "src/filesystem/file_info.h"

// {"file_count": 1, "files": [{"file": …, "size": …, "time": …, "utc_timestamp": …}]}: time and utc_timestamp only
// where there is one, size only with_size. Without files "files" is null, not an empty array.
std::string serialization_file_list(const std::list<FileInfo>* files, bool with_size);

// {"Dir": [folders], "File": [{"Name": …, "Size": …, "Time": …}], "Name": …}: Dir, File and Time only where there
// is one, Size only with_size. Every file's path begins with root and a slash; folders without
// a file are not in the list and therefore not in the tree. There is no limit to the depth; each folder indents its
// lines by six more spaces.
std::string serialization_file_list_keep_folder_structer(const std::list<FileInfo>* files,
                                                         const std::string& root, bool with_size);

namespace darokleim::sdk {

// Hands a document out. Frees the files first: they take as much memory as the copy of the document.
void HandOutOnce(const std::string& document, std::list<FileInfo>* files, char** json, int* json_len);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_FILE_LIST_JSON_H

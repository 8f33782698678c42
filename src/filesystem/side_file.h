// The copy of each file list that is left on the host.
#ifndef DAROKLEIM_SRC_FILESYSTEM_SIDE_FILE_H
#define DAROKLEIM_SRC_FILESYSTEM_SIDE_FILE_H

// Writes len bytes into the file "F:\" + name, which is created or replaced. Hosts of this library know no
// drives: it is a file of the current working directory whose name begins with those three characters.
// Says nothing when it cannot be written.
void SaveBuf(const char* name, const char* buf, int len);

#endif  // DAROKLEIM_SRC_FILESYSTEM_SIDE_FILE_H

// The copy of each file list on the host.
#ifndef DAROKLEIM_SRC_FILESYSTEM_SIDE_FILE_H
#define DAROKLEIM_SRC_FILESYSTEM_SIDE_FILE_H

// Writes len bytes into the file "F:\" + name, which is created or replaced. On macOS and Linux this is a file
// in the current working directory whose name begins with those three characters. Anything but a regular file of that
// name, a link for example, is left unchanged. Errors are ignored.
void SaveBuf(const char* name, const char* buf, int len);

#endif  // DAROKLEIM_SRC_FILESYSTEM_SIDE_FILE_H

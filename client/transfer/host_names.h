// Names in folders of this computer, where each system has calls of its own. Some file systems take two names for the same file,
// as those of macOS do for names that differ only by case.
#ifndef DAROKLEIM_CLIENT_TRANSFER_HOST_NAMES_H
#define DAROKLEIM_CLIENT_TRANSFER_HOST_NAMES_H

#include <string>

namespace darokleim::client {

// Whether the open file is spelled exactly so in its folder.
bool HasExactName(int descriptor, const std::string& name);

// Whether there is a file that the name leads to, but which is spelled otherwise.
bool IsNameOfAnother(int folder, const std::string& name);

// Renames a file within its folder, and replaces nothing: EEXIST where there is something of that name, ENOTSUP on file systems
// that cannot do it in one step. 0 or an errno.
int RenameToFreeName(int folder, const std::string& from, const std::string& to);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_TRANSFER_HOST_NAMES_H

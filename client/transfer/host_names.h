// File systems that take two names for the same file, as those of macOS do for names that differ only by case.
#ifndef DAROKLEIM_CLIENT_TRANSFER_HOST_NAMES_H
#define DAROKLEIM_CLIENT_TRANSFER_HOST_NAMES_H

#include <string>

namespace darokleim::client {

// Whether the open file is spelled exactly so in its folder.
bool HasExactName(int descriptor, const std::string& name);

// Whether there is a file that the name leads to, but which is spelled otherwise.
bool IsNameOfAnother(int folder, const std::string& name);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_TRANSFER_HOST_NAMES_H

// Names of files and folders that are not whole yet, on the phone and on this computer.
#ifndef DAROKLEIM_CLIENT_TEMPORARY_NAME_H
#define DAROKLEIM_CLIENT_TEMPORARY_NAME_H

#include <string>
#include <string_view>

namespace darokleim::client {

// A hidden name that no other call, process or computer uses: it names this computer and this process, and counts.
std::string NewTemporaryName();

// Whether a name is one of a process of this computer that has ended without removing it.
bool IsLeftOver(std::string_view name);

// What all of them begin with.
inline constexpr std::string_view kTemporaryPrefix = ".darokleim-";

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_TEMPORARY_NAME_H

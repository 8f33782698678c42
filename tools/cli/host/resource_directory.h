#ifndef DAROKLEIM_TOOLS_CLI_HOST_RESOURCE_DIRECTORY_H
#define DAROKLEIM_TOOLS_CLI_HOST_RESOURCE_DIRECTORY_H

#include <string>

#include "tools/cli/host/adb_location.h"

namespace darokleim::cli {

// The library wants one directory that holds "adb" and "busybox". Makes one of symbolic links to the programs, in
// the user's cache, or returns the one that an earlier run made: the same programs have the same directory, so any
// number of tools may run at once. Throws ToolError when it cannot be made.
//
// Without a busybox its place is taken by a link to the null device, which adb does not copy to a device: a file
// there would stay on the device as its busybox.
std::string MakeResourceDirectory(const HostPrograms& programs);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_HOST_RESOURCE_DIRECTORY_H

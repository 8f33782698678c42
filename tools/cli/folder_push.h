#ifndef DAROKLEIM_TOOLS_CLI_FOLDER_PUSH_H
#define DAROKLEIM_TOOLS_CLI_FOLDER_PUSH_H

#include "tools/cli/push_source.h"
#include "tools/cli/transfer.h"

namespace darokleim::cli {

// Pushes a folder so that it becomes `target`, which is no file. Files of which the device has one of the same size
// and time are passed over. After a failure or a cancel, the files that did not arrive whole are deleted. Throws as Device::Check.
Transfer PushFolder(const Tool& tool, const Device& device, const PushSource& source,
                    const DevicePath& target);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_FOLDER_PUSH_H

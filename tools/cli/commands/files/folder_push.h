#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_FOLDER_PUSH_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_FOLDER_PUSH_H

#include "tools/cli/commands/files/push_source.h"
#include "tools/cli/commands/files/transfer.h"

namespace darokleim::cli {

// Pushes a folder so that it becomes `target`, which must not be a file. Files of which the device has one of the same
// size and time are skipped. After a failure or a cancel, incomplete files are deleted. Throws as Device::Check.
Transfer PushFolder(const Tool& tool, const Device& device, const PushSource& source,
                    const DevicePath& target);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_FOLDER_PUSH_H

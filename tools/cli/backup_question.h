// The question on the phone's screen that a backup and a restore wait for.
#ifndef DAROKLEIM_TOOLS_CLI_BACKUP_QUESTION_H
#define DAROKLEIM_TOOLS_CLI_BACKUP_QUESTION_H

#include "tools/cli/device.h"

namespace darokleim::cli {

// After Ctrl-C the question would stay on the phone. A second Ctrl-C ends the tool without this.
void CloseQuestionIfCancelled(const Device& device);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_BACKUP_QUESTION_H

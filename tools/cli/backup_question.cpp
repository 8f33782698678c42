#include "tools/cli/backup_question.h"

#include <darokleim.h>

#include "tools/cli/cancel_on_signal.h"

namespace darokleim::cli {

void CloseQuestionIfCancelled(const Device& device) {
  // Without a flag, which is set already; what comes of it no longer matters.
  if (IsCancelled()) AdbStopDeviceBackupRestoreProcess(device.serial(), nullptr);
}

}  // namespace darokleim::cli

#include "tools/phone/device/backup_confirmation.h"

#include <unistd.h>

#include <filesystem>
#include <string>

#include "tools/phone/common/faults.h"
#include "tools/phone/common/io.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/records.h"

namespace darokleim::phone {

namespace {

namespace fs = std::filesystem;

constexpr useconds_t kAskAgainMicroseconds = 20 * 1000;

// One file for each question on the screen.
std::string Questions() {
  return std::string(kStateFolder) + "/backup-questions";
}

}  // namespace

bool WaitForConfirmation() {
  const Faults faults(kStateFolder);
  std::error_code error;
  fs::create_directories(Questions(), error);
  const std::string question = Questions() + "/" + std::to_string(getpid());
  WriteFile(question, "");
  bool asking = true;
  if (faults.Has(fault::kUnconfirmedBackup)) {
    AppendRecord(kActivityRecord, std::string("start ") + kBackupConfirmation + "/" + kBackupConfirmation +
                                      ".BackupRestoreConfirmation");
  }
  while (faults.Has(fault::kUnconfirmedBackup) && (asking = fs::exists(question, error))) {
    usleep(kAskAgainMicroseconds);
  }
  fs::remove(question, error);
  return asking;
}

void AbandonConfirmations() {
  std::error_code error;
  fs::remove_all(Questions(), error);
}

}  // namespace darokleim::phone

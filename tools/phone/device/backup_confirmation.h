#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_BACKUP_CONFIRMATION_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_BACKUP_CONFIRMATION_H

namespace darokleim::phone {

// The application that asks on the phone's screen before a backup or restore.
inline constexpr char kBackupConfirmation[] = "com.android.backupconfirm";

// Waits for the user's answer: at once yes, or, while the fault unconfirmed-backup is on, nothing until the fault
// is mended (yes) or the application is stopped (no).
bool WaitForConfirmation();

// Ends the waiting of every backup and restore with no.
void AbandonConfirmations();

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_BACKUP_CONFIRMATION_H

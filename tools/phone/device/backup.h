#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_BACKUP_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_BACKUP_H

namespace darokleim::phone {

// The file of `adb backup`: four lines ("ANDROID BACKUP", version, 1 when compressed, "none" when not encrypted),
// then a tar archive, deflated. Both copy until the end of the input and hold little of it in memory.

// From a tar archive to a backup file.
bool WriteBackupFile(int archive, int backup);
// From a backup file to the tar archive in it; false for a file that is not a backup, is encrypted or is damaged.
bool ReadBackupFile(int backup, int archive);

// The application that asks on the phone's screen before a backup or restore.
inline constexpr char kBackupConfirmation[] = "com.android.backupconfirm";

// Waits for the user's answer: yes at once, or, while the fault unconfirmed-backup is on, nothing until the fault
// is cleared (yes) or the application is stopped (no).
bool WaitForConfirmation();

// Answers no to every backup and restore that waits.
void CancelConfirmations();

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_BACKUP_H

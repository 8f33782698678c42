#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_BACKUP_FILE_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_BACKUP_FILE_H

namespace darokleim::phone {

// The file of `adb backup`: four lines ("ANDROID BACKUP", version, 1 when compressed, "none" when not encrypted),
// then a tar archive, deflated. Both copy until the end of the input and hold little of it in memory.

// From a tar archive to a backup file.
bool WriteBackupFile(int archive, int backup);
// From a backup file to the tar archive in it; false for a file that is none, is encrypted or is damaged.
bool ReadBackupFile(int backup, int archive);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_BACKUP_FILE_H

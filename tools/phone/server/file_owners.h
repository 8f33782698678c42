#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_FILE_OWNERS_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_FILE_OWNERS_H

#include <string>
#include <vector>

#include "tools/phone/server/phone_options.h"

namespace darokleim::phone {

// A storage volume of the phone.
struct StorageVolume {
  std::string path;    // where it is
  std::string linked;  // where the system has it too, through a link
};

// The texts that the file system view reads: who owns what, and which disks there are.
std::string OwnersFile(const PhoneOptions& options, const std::vector<StorageVolume>& volumes);
std::string MountsFile(const std::vector<StorageVolume>& volumes);

// The /etc/passwd and /etc/group of every Android, as far as they matter here.
std::string PasswdFile();
std::string GroupFile();

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_FILE_OWNERS_H

#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_FOLDER_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_FOLDER_H

#include <optional>
#include <string>
#include <vector>

#include "tools/phone/common/faults.h"
#include "tools/phone/server/phone_options.h"
#include "tools/phone/server/sandbox_parts.h"
#include "tools/phone/server/storage_volume.h"
#include "tools/phone/server/temporary_folder.h"

namespace darokleim::phone {

// The host folder of one phone: its file system and, beside it, what the phone keeps that no file of a real
// phone shows. A temporary one goes with this object.
class PhoneFolder {
 public:
  // Throws std::runtime_error when the folder cannot be made or is another phone's.
  PhoneFolder(const PhoneOptions& options, const KeyValues& properties, const SandboxParts& parts);
  PhoneFolder(const PhoneFolder&) = delete;
  PhoneFolder& operator=(const PhoneFolder&) = delete;

  // The phone's "/".
  std::string files() const { return path_ + "/files"; }
  std::string state() const { return path_ + "/state"; }

  const std::vector<StorageVolume>& volumes() const { return volumes_; }

  // Drops what a phone forgets when it is switched off: set properties other than the persistent ones.
  void ForgetUntilBoot() const;

  // Takes the commands away that the faults say are missing, and gives back those that they no longer do.
  void FollowFaults(const Faults& faults) const;

 private:
  void LayOut(const PhoneOptions& options, const KeyValues& properties, const SandboxParts& parts);

  std::optional<TemporaryFolder> temporary_;
  std::string path_;
  base::UniqueFd lock_;
  std::vector<StorageVolume> volumes_;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_FOLDER_H

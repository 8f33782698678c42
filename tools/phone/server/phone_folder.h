#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_FOLDER_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_FOLDER_H

#include <optional>
#include <string>
#include <vector>

#include "tools/phone/common/faults.h"
#include "tools/phone/server/file_owners.h"
#include "tools/phone/server/phone_options.h"
#include "tools/phone/server/temporary_folder.h"

namespace darokleim::phone {

struct SandboxParts;

// The host folder of one phone: its file system and, beside it, what no file of a real phone shows. A temporary one is
// removed with this object.
//
// Programs of the phone may put links anywhere where they may write: in the folder `state`, and in `data`, `cache`,
// `mnt` and the storage volumes of `files`. These folders are in others that they may not write to, and the server
// follows no path below them.
class PhoneFolder {
 public:
  // Throws std::runtime_error when the folder cannot be made or is another phone's.
  PhoneFolder(const PhoneOptions& options, const KeyValues& properties, const SandboxParts& parts);
  PhoneFolder(const PhoneFolder&) = delete;
  PhoneFolder& operator=(const PhoneFolder&) = delete;

  // The phone's "/".
  std::string files() const { return path_ + "/files"; }
  // What the phone keeps, see kStateFolder.
  std::string state() const { return path_ + "/state"; }
  // What the phone sees read-only, see kSetupFolder.
  std::string setup() const { return path_ + "/setup"; }

  const std::vector<StorageVolume>& volumes() const { return volumes_; }

  // Hides the commands that the faults say are missing, and restores the others.
  void ApplyFaults(const Faults& faults) const;

 private:
  // The links of commands that a fault hides.
  std::string HiddenCommands() const { return path_ + "/hidden-commands"; }
  void LayOut(const PhoneOptions& options, const KeyValues& properties, const SandboxParts& parts);

  std::optional<TemporaryFolder> temporary_;
  std::string path_;
  base::UniqueFd lock_;
  std::vector<StorageVolume> volumes_;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_FOLDER_H

#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_TEMPORARY_FOLDER_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_TEMPORARY_FOLDER_H

#include <string>

#include "base/unique_fd.h"

namespace darokleim::phone {

// A folder that is removed with this object, with everything in it.
class TemporaryFolder {
 public:
  // Throws std::runtime_error when there is no place for it.
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// Takes the folder for as long as the result is open; not valid when another phone has it.
base::UniqueFd LockFolder(const std::string& folder);

// Removes this user's temporary folders that are no longer locked: a server that is killed leaves its own.
void RemoveAbandonedFolders();

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_TEMPORARY_FOLDER_H

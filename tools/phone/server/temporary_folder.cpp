#include "tools/phone/server/temporary_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace darokleim::phone {

namespace {

namespace fs = std::filesystem;

constexpr char kPrefix[] = "darokleim-phone-";
constexpr char kLock[] = "/lock";
// A folder so new may be one whose owner has yet to take the lock.
constexpr time_t kNewSeconds = 60;

// A folder that its owner may not read would stop the removal of the rest.
void MakeRemovable(const fs::path& folder) {
  std::error_code error;
  fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add, error);
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    if (entry.is_directory(error) && !entry.is_symlink(error)) MakeRemovable(entry.path());
  }
}

void RemoveFolder(const fs::path& folder) {
  MakeRemovable(folder);
  std::error_code error;
  fs::remove_all(folder, error);
}

bool IsAbandoned(const std::string& folder) {
  struct stat status;
  if (lstat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != geteuid())
    return false;
  const base::UniqueFd lock(open((folder + kLock).c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC));
  return lock.valid() && fstat(lock.get(), &status) == 0 &&
         status.st_mtime + kNewSeconds < std::time(nullptr) && flock(lock.get(), LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  std::error_code error;
  path_ = (fs::temp_directory_path(error) / kPrefix).string() + "XXXXXX";
  if (error || mkdtemp(path_.data()) == nullptr) {
    throw std::runtime_error("no place for temporary files: " +
                             (error ? error.message() : path_ + ": " + std::strerror(errno)));
  }
}

TemporaryFolder::~TemporaryFolder() {
  RemoveFolder(path_);
}

base::UniqueFd LockFolder(const std::string& folder) {
  base::UniqueFd lock(open((folder + kLock).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (lock.valid() && flock(lock.get(), LOCK_EX | LOCK_NB) != 0) lock.Reset();
  return lock;
}

void RemoveAbandonedFolders() {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(fs::temp_directory_path(error), error)) {
    const bool named_so = entry.path().filename().string().rfind(kPrefix, 0) == 0;
    if (named_so && IsAbandoned(entry.path().string())) RemoveFolder(entry.path());
  }
}

}  // namespace darokleim::phone

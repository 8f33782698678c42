#include "tools/phone/server/temporary_folder.h"

#include <dirent.h>
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
#include <string_view>
#include <system_error>

namespace darokleim::phone {

namespace {

namespace fs = std::filesystem;

constexpr char kPrefix[] = "darokleim-phone-";
constexpr char kLock[] = "/lock";
// A folder so new may be one whose owner has yet to take the lock.
constexpr time_t kNewSeconds = 60;

// A folder that its owner may not read would stop the removal of the rest.
// Folder by folder through descriptors: a phone may have put links anywhere in it.
void MakeRemovable(int parent, const std::string& name) {
  const base::UniqueFd place(openat(parent, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!place.valid()) return;
  chmod(("/proc/self/fd/" + std::to_string(place.get())).c_str(), S_IRWXU);
  const int folder = openat(place.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  DIR* const entries = folder < 0 ? nullptr : fdopendir(folder);
  if (entries == nullptr) {
    if (folder >= 0) close(folder);
    return;
  }
  while (const dirent* entry = readdir(entries)) {
    const std::string_view entry_name = entry->d_name;
    if (entry->d_type == DT_DIR && entry_name != "." && entry_name != "..")
      MakeRemovable(folder, entry->d_name);
  }
  closedir(entries);
}

void RemoveFolder(const fs::path& folder) {
  MakeRemovable(AT_FDCWD, folder.string());
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

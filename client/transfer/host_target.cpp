#include "client/transfer/host_target.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "base/standard_streams.h"
#include "client/phone_path.h"
#include "client/transfer/host_names.h"

namespace darokleim::client {
namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

std::string In(const std::string& folder, const std::string& name) {
  return folder.empty() || folder.back() == '/' ? folder + name : folder + "/" + name;
}

std::string Writing(const std::string& path) {
  return "write " + Shown(path);
}

bool MakeWithParents(const std::string& path) {
  if (mkdir(path.c_str(), 0777) == 0 || errno == EEXIST) return true;
  const std::size_t slash = path.find_last_of('/');
  if (errno != ENOENT || slash == std::string::npos || slash == 0) return false;
  return MakeWithParents(path.substr(0, slash)) && (mkdir(path.c_str(), 0777) == 0 || errno == EEXIST);
}

}  // namespace

Result<std::shared_ptr<HostFolder>> HostFolder::Open(const std::string& path) {
  base::UniqueFd opened(open(path.c_str(), kFolderFlags));
  if (!opened.valid() && errno == ENOENT && MakeWithParents(path))
    opened.Reset(open(path.c_str(), kFolderFlags));
  if (!opened.valid()) return FromHostErrno(errno, Writing(path), path);
  return std::shared_ptr<HostFolder>(new HostFolder(std::move(opened), path));
}

Result<std::shared_ptr<HostFolder>> HostFolder::Enter(const std::string& name) const {
  const std::string path = In(path_, name);
  if (!IsSafeName(name)) return UnsafeName(Writing(path), path);
  if (mkdirat(descriptor(), name.c_str(), 0777) != 0 && errno != EEXIST)
    return FromHostErrno(errno, Writing(path), path);
  base::UniqueFd opened(openat(descriptor(), name.c_str(), kFolderFlags | O_NOFOLLOW));
  if (!opened.valid()) {
    struct stat status = {};
    const int error = errno;
    const bool is_link =
        fstatat(descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode);
    return is_link ? UnsafeName(Writing(path), path) : FromHostErrno(error, Writing(path), path);
  }
  if (!HasExactName(opened.get(), name)) return UnsafeName(Writing(path), path);
  return std::shared_ptr<HostFolder>(new HostFolder(std::move(opened), path));
}

Existing HostFolder::Look(const std::string& name) const {
  struct stat status = {};
  if (fstatat(descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return {};
  const bool is_file = S_ISREG(status.st_mode);
  return {true, S_ISDIR(status.st_mode), is_file ? static_cast<std::uint64_t>(status.st_size) : 0,
          status.st_mtime};
}

Status HostFolder::CheckName(const std::string& name) const {
  const std::string path = In(path_, name);
  if (!IsSafeName(name) || IsNameOfAnother(descriptor(), name)) return UnsafeName(Writing(path), path);
  return {};
}

Error UnsafeName(std::string_view what, const std::string& path) {
  Error error =
      Failed(DK_UNSAFE_NAME, what, "the name leads out of the target folder, or is another file's here");
  error.path = path;
  error.on_host = true;
  return error;
}

ReceivedFile::~ReceivedFile() {
  if (is_temporary_) unlinkat(folder_->descriptor(), temporary_.text().c_str(), 0);
}

Error ReceivedFile::FromErrno(int error) const {
  const std::string path = In(folder_->path(), name_);
  return FromHostErrno(error, Writing(path), path);
}

Result<std::unique_ptr<ReceivedFile>> ReceivedFile::Create(std::shared_ptr<HostFolder> folder,
                                                           std::string name) {
  const std::string path = In(folder->path(), name);
  if (Status checked = folder->CheckName(name); !checked.ok()) return checked.TakeError();
  std::unique_ptr<ReceivedFile> file(new ReceivedFile(std::move(folder), std::move(name)));
  file->descriptor_ = base::OpenClearOfStandardStreams([&file] {
    return openat(file->folder_->descriptor(), file->temporary_.text().c_str(),
                  O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
  });
  if (!file->descriptor_.valid()) return FromHostErrno(errno, Writing(path), path);
  file->is_temporary_ = true;
  return file;
}

Status ReceivedFile::Write(std::string_view data) {
  while (!data.empty()) {
    const ssize_t count = write(descriptor_.get(), data.data(), data.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return FromErrno(errno);
    data.remove_prefix(static_cast<std::size_t>(count));
  }
  return {};
}

int ReceivedFile::Rename(bool may_replace) const {
  const int folder = folder_->descriptor();
  if (!may_replace) {
    const int error = RenameToFreeName(folder, temporary_.text(), name_);
    if (error != ENOTSUP) return error;
    if (folder_->Look(name_).exists) return EEXIST;
  }
  return renameat(folder, temporary_.text().c_str(), folder, name_.c_str()) == 0 ? 0 : errno;
}

Status ReceivedFile::Commit(std::optional<std::int64_t> modified, std::uint32_t permissions,
                            bool may_replace) {
  if (permissions != 0 && fchmod(descriptor_.get(), static_cast<mode_t>(permissions)) != 0)
    return FromErrno(errno);
  if (modified) {
    const timespec time = {static_cast<time_t>(*modified), 0};
    const timespec times[] = {time, time};
    if (futimens(descriptor_.get(), times) != 0) return FromErrno(errno);
  }
  // An older file is given up only for one that a power failure does not take.
  const bool replaces = may_replace && folder_->Look(name_).exists;
  if (replaces && fsync(descriptor_.get()) != 0) return FromErrno(errno);
  if (close(std::exchange(descriptor_, base::UniqueFd()).Release()) != 0 && errno != EINTR)
    return FromErrno(errno);
  if (const int error = Rename(may_replace); error != 0) return FromErrno(error);
  is_temporary_ = false;
  return {};
}

void RemoveLeftOvers(const HostFolder& folder) {
  base::UniqueFd descriptor(openat(folder.descriptor(), ".", kFolderFlags));
  const std::unique_ptr<DIR, int (*)(DIR*)> opened(fdopendir(descriptor.get()), closedir);
  if (opened == nullptr) return;
  static_cast<void>(descriptor.Release());
  std::vector<std::string> names;
  while (const dirent* const entry = readdir(opened.get())) {
    if (IsLeftOver(entry->d_name)) names.emplace_back(entry->d_name);
  }
  for (const std::string& name : names) unlinkat(folder.descriptor(), name.c_str(), 0);
}

}  // namespace darokleim::client

#include "channel/direct/host_file.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <utime.h>

#include <cerrno>

#include "base/standard_streams.h"

namespace darokleim::channel::direct {
namespace {

constexpr mode_t kPermissions = 0777;

std::string_view WithoutSlashesAtEnd(std::string_view path) {
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  return path;
}

}  // namespace

std::string FolderOf(std::string_view path) {
  path = WithoutSlashesAtEnd(path);
  const size_t slash = path.rfind('/');
  if (slash == std::string_view::npos) return ".";
  return std::string(WithoutSlashesAtEnd(path.substr(0, slash + 1)));
}

std::string NameOf(std::string_view path) {
  path = WithoutSlashesAtEnd(path);
  if (path.empty()) return ".";
  if (path == "/") return "/";
  return std::string(path.substr(path.rfind('/') + 1));
}

int StatOf(const std::string& path, struct stat* status) {
  return stat(path.c_str(), status) == 0 ? 0 : errno;
}

bool FileSizesAreLimited() {
  rlimit limit;
  return getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
}

ReceivedFile::~ReceivedFile() {
  if (file_.valid() && !kept_) unlink(path_.c_str());
}

// A new file shows the umask, which a process with threads cannot ask for without changing it for a moment.
int ReceivedFile::Create() {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
  constexpr mode_t kMode = 0644;
  unlink(path_.c_str());
  const auto open_it = [this](int flags, mode_t mode) {
    file_ = base::OpenClearOfStandardStreams([&] { return open(path_.c_str(), flags, mode); });
  };
  open_it(kFlags | O_EXCL, kPermissions);
  created_ = file_.valid();
  if (!created_ && errno == EEXIST) open_it(kFlags, kMode);
  if (!file_.valid()) return errno;
  struct stat status;
  if (!created_ || fstat(file_.get(), &status) != 0) return 0;
  mask_ = kPermissions & ~status.st_mode;
  fchmod(file_.get(), kMode & ~mask_);
  return 0;
}

int ReceivedFile::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(file_.get(), bytes.data(), bytes.size());
    if (count > 0) {
      bytes.remove_prefix(static_cast<size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return count == 0 ? ENOSPC : errno;
    }
  }
  return 0;
}

void ReceivedFile::Keep() {
  kept_ = true;
}

int ReceivedFile::SetTimeAndMode(int64_t seconds, mode_t mode) {
  const utimbuf times = {.actime = static_cast<time_t>(seconds), .modtime = static_cast<time_t>(seconds)};
  const int time_error = utime(path_.c_str(), &times) == 0 ? 0 : errno;
  const bool changed = !created_ || chmod(path_.c_str(), mode & 07777 & ~mask_) == 0;
  if (time_error != 0) return time_error;
  return changed ? 0 : errno;
}

}  // namespace darokleim::channel::direct

#include "client/transfer/host_tree.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <vector>

#include "client/temporary_name.h"

namespace darokleim::client {
namespace {

constexpr std::uint32_t kPermissionBits = 07777;

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

std::string RealHostPath(const std::string& path) {
  const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
  return real ? std::string(real.get()) : std::string();
}

Result<std::vector<std::string>> NamesIn(const std::string& folder) {
  const std::unique_ptr<DIR, CloseFolder> open(opendir(folder.c_str()));
  if (!open) return FromHostErrno(errno, "read the folder " + Shown(folder), folder);
  std::vector<std::string> names;
  for (;;) {
    errno = 0;
    const dirent* const entry = readdir(open.get());
    if (entry == nullptr) break;
    const std::string_view name = entry->d_name;
    if (name != "." && name != ".." && !IsTemporary(name)) names.emplace_back(name);
  }
  if (errno != 0) return FromHostErrno(errno, "read the folder " + Shown(folder), folder);
  std::sort(names.begin(), names.end());
  return names;
}

class HostWalk {
 public:
  HostWalk(const std::function<Status(const HostFile&)>& use, const std::function<Status(Error)>& fail)
      : use_(use), fail_(fail) {}

  // The source itself may be a link to a folder: its caller has named it.
  Status Run(const std::string& source) {
    root_ = RealHostPath(source) + "/";
    struct stat status = {};
    if (stat(source.c_str(), &status) != 0) {
      return fail_(FromHostErrno(errno, "send " + Shown(source), source));
    }
    return Take(source, "", status);
  }

 private:
  Status Below(const std::string& path, const std::string& below) {
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0) return fail_(FromHostErrno(errno, "send " + Shown(path), path));
    if (S_ISLNK(status.st_mode)) {
      if (stat(path.c_str(), &status) != 0) return fail_(FromHostErrno(errno, "send " + Shown(path), path));
      const bool leads_out = RealHostPath(path).compare(0, root_.size(), root_) != 0;
      if (S_ISDIR(status.st_mode) || leads_out) {
        Error error = Failed(DK_UNSUPPORTED, "send " + Shown(path),
                             "it is a link to a folder, or to outside of what is sent");
        error.path = path;
        error.on_host = true;
        return fail_(std::move(error));
      }
    }
    return Take(path, below, status);
  }

  Status Take(const std::string& path, const std::string& below, const struct stat& status) {
    if (!S_ISDIR(status.st_mode) && !S_ISREG(status.st_mode)) return {};
    HostFile file;
    file.path = path;
    file.below = below;
    file.is_folder = S_ISDIR(status.st_mode);
    file.size = file.is_folder ? 0 : static_cast<std::uint64_t>(status.st_size);
    file.modified = status.st_mtime;
    file.permissions = status.st_mode & kPermissionBits;
    if (Status used = use_(file); !used.ok() || !file.is_folder) return used;
    auto names = NamesIn(path);
    if (!names.ok()) return fail_(names.TakeError());
    for (const std::string& name : *names) {
      const std::string in_folder = "/" + name;
      if (Status walked = Below(path + in_folder, below + in_folder); !walked.ok()) return walked;
    }
    return {};
  }

  const std::function<Status(const HostFile&)>& use_;
  const std::function<Status(Error)>& fail_;
  std::string root_;  // without links, with a slash at its end
};

}  // namespace

Status WalkHost(const std::string& source, const std::function<Status(const HostFile&)>& use,
                const std::function<Status(Error)>& fail) {
  return HostWalk(use, fail).Run(source);
}

}  // namespace darokleim::client

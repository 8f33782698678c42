#include <fcntl.h>
#include <sys/param.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "base/unique_fd.h"
#include "client/transfer/host_names.h"

namespace darokleim::client {

bool HasExactName(int descriptor, const std::string& name) {
  char path[MAXPATHLEN];
  if (fcntl(descriptor, F_GETPATH, path) != 0) return true;
  const char* const slash = std::strrchr(path, '/');
  return slash == nullptr || name == slash + 1;
}

bool IsNameOfAnother(int folder, const std::string& name) {
  // O_SYMLINK opens a link itself; O_EVTONLY asks for no right to read.
  const base::UniqueFd opened(openat(folder, name.c_str(), O_EVTONLY | O_SYMLINK | O_CLOEXEC));
  return opened.valid() && !HasExactName(opened.get(), name);
}

int RenameToFreeName(int folder, const std::string& from, const std::string& to) {
  if (renameatx_np(folder, from.c_str(), folder, to.c_str(), RENAME_EXCL) == 0) return 0;
  return errno == EINVAL ? ENOTSUP : errno;
}

}  // namespace darokleim::client

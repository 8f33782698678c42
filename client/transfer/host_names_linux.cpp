#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>

#include "base/unique_fd.h"
#include "client/transfer/host_names.h"

namespace darokleim::client {

// The kernel knows an open file by the name that it is stored under, also in folders that ignore case. Where /proc does not
// say, names are taken to be what they are on nearly every Linux: exact.
bool HasExactName(int descriptor, const std::string& name) {
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
  std::array<char, 4096> path;
  const ssize_t length = readlink(link.c_str(), path.data(), path.size());
  if (length <= 0 || static_cast<std::size_t>(length) == path.size()) return true;
  const std::string text(path.data(), static_cast<std::size_t>(length));
  const std::size_t slash = text.rfind('/');
  if (slash == std::string::npos) return true;
  const std::string stored = text.substr(slash + 1);
  return stored == name ||
         stored == name + " (deleted)";  // as the kernel shows one that has been removed meanwhile
}

bool IsNameOfAnother(int folder, const std::string& name) {
  const base::UniqueFd opened(openat(folder, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  return opened.valid() && !HasExactName(opened.get(), name);
}

int RenameToFreeName(int folder, const std::string& from, const std::string& to) {
  if (renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  return errno == EINVAL || errno == ENOSYS ? ENOTSUP : errno;
}

}  // namespace darokleim::client

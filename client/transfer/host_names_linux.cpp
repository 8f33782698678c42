#include <fcntl.h>
#include <unistd.h>

#include <array>

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
  return slash == std::string::npos || text.compare(slash + 1, std::string::npos, name) == 0;
}

bool IsNameOfAnother(int folder, const std::string& name) {
  const base::UniqueFd opened(openat(folder, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  return opened.valid() && !HasExactName(opened.get(), name);
}

}  // namespace darokleim::client

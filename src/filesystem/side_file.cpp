#include "src/filesystem/side_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <utility>

#include "base/unique_fd.h"

namespace {

// Opens a regular file of this name and empties it; invalid when anything else has the name. A link is not followed,
// and a FIFO without a reader does not block. Close-on-exec: an adb server that another thread starts must not inherit
// the descriptor.
darokleim::base::UniqueFd OpenRegularFile(const std::string& path) {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  constexpr mode_t kMode = 0666;  // less the process's umask
  darokleim::base::UniqueFd file(open(path.c_str(), kFlags, kMode));
  struct stat status;
  const bool writable = file.valid() && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) &&
                        ftruncate(file.get(), 0) == 0;
  return writable ? std::move(file) : darokleim::base::UniqueFd();
}

}  // namespace

void SaveBuf(const char* name, const char* buf, int len) {
  const auto file = OpenRegularFile(std::string("F:\\") + name);
  if (!file.valid() || len <= 0) return;
  for (std::string_view rest(buf, static_cast<std::size_t>(len)); !rest.empty();) {
    const ssize_t written = write(file.get(), rest.data(), rest.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
}

#include <libproc.h>
#include <unistd.h>

#include "tools/cli/host/children.h"

namespace darokleim::cli {

std::vector<pid_t> Children() {
  constexpr std::size_t kMost = 1024;
  std::vector<pid_t> children(kMost);
  const int count = proc_listchildpids(getpid(), children.data(), static_cast<int>(kMost * sizeof(pid_t)));
  children.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return children;
}

}  // namespace darokleim::cli

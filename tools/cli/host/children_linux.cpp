#include <dirent.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "tools/cli/host/children.h"

namespace darokleim::cli {
namespace {

// 0 when the process is gone.
pid_t ParentOf(const std::string& process) {
  std::ifstream file("/proc/" + process + "/stat");
  std::string line;
  std::getline(file, line);
  // "PID (NAME) STATE PARENT …"; the name may hold anything.
  const auto name_end = line.rfind(')');
  if (name_end == std::string::npos || line.size() < name_end + 4) return 0;
  return static_cast<pid_t>(strtol(line.c_str() + name_end + 4, nullptr, 10));
}

}  // namespace

std::vector<pid_t> Children() {
  std::vector<pid_t> children;
  DIR* const processes = opendir("/proc");
  if (processes == nullptr) return children;
  while (const dirent* entry = readdir(processes)) {
    const pid_t process = static_cast<pid_t>(strtol(entry->d_name, nullptr, 10));
    if (process > 0 && ParentOf(entry->d_name) == getpid()) children.push_back(process);
  }
  closedir(processes);
  return children;
}

}  // namespace darokleim::cli

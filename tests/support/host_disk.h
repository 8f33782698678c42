// A disk of a test's own.
#ifndef DAROKLEIM_TESTS_SUPPORT_HOST_DISK_H
#define DAROKLEIM_TESTS_SUPPORT_HOST_DISK_H

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <fstream>
#include <string>

namespace darokleim::test {

// Mounts one of 1 MiB over a folder of the host, for the running process and what it starts. Also for an ordinary user, who
// may where the simulated phones run: both need namespaces. False, with errno, where the system refuses.
inline bool MountDisk(const std::string& folder, unsigned long flags) {
  const std::string uid = std::to_string(geteuid()), gid = std::to_string(getegid());
  const bool superuser = geteuid() == 0;
  if (unshare(CLONE_NEWNS | (superuser ? 0 : CLONE_NEWUSER)) != 0) return false;
  if (!superuser) {
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " + uid + " 1";
    std::ofstream("/proc/self/gid_map") << "0 " + gid + " 1";
  }
  return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("tmpfs", folder.c_str(), "tmpfs", flags, "size=1m") == 0;
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_HOST_DISK_H

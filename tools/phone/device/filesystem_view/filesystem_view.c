// Loaded into every program of a simulated phone, before the C library: makes the phone's folder look like a
// phone's file systems where the folder itself cannot. In a sandbox of an ordinary user every file belongs to
// one user and lies on one disk; here files get the owners that Android gives them by their place, each volume
// is a disk of its own, and a full storage refuses what is written.
//
// The server lays down two files, of which this reads
//   .../owners: "USER GROUP PATH" lines; the longest path that a file lies at or under decides
//   .../mounts: "DEVICE PATH TYPE OPTIONS 0 0" lines, as in /proc/mounts

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <mntent.h>
#include <stdarg.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "tools/phone/device/filesystem_view/view_paths.h"

#define EXPORTED __attribute__((visibility("default")))

enum { kMostRules = 64, kLongestPath = 256, kDeviceMajor = 253 };

struct Rule {
  char path[kLongestPath];
  size_t length;
  uid_t user;
  gid_t group;
};

struct Rules {
  struct Rule rule[kMostRules];
  int count;
};

static struct Rules owners;
static struct Rules mounts;

static void AddRule(struct Rules* rules, const char* path, uid_t user, gid_t group) {
  if (rules->count == kMostRules) return;
  struct Rule* rule = &rules->rule[rules->count++];
  snprintf(rule->path, sizeof(rule->path), "%s", path);
  rule->length = strlen(rule->path);
  rule->user = user;
  rule->group = group;
}

__attribute__((constructor)) static void ReadRules(void) {
  char line[1024];
  char* rest;
  FILE* file = fopen(VIEW_OWNERS, "re");
  if (file != NULL) {
    while (fgets(line, sizeof(line), file) != NULL) {
      const char* user = strtok_r(line, " \n", &rest);
      const char* group = strtok_r(NULL, " \n", &rest);
      const char* path = strtok_r(NULL, " \n", &rest);
      if (path != NULL)
        AddRule(&owners, path, (uid_t)strtoul(user, NULL, 10), (gid_t)strtoul(group, NULL, 10));
    }
    fclose(file);
  }
  file = fopen(VIEW_MOUNTS, "re");
  if (file != NULL) {
    while (fgets(line, sizeof(line), file) != NULL) {
      const char* device = strtok_r(line, " \n", &rest);
      const char* path = strtok_r(NULL, " \n", &rest);
      if (device != NULL && path != NULL) AddRule(&mounts, path, 0, 0);
    }
    fclose(file);
  }
}

static bool IsAtOrUnder(const char* path, const struct Rule* rule) {
  if (rule->length == 1) return path[0] == '/';
  return strncmp(path, rule->path, rule->length) == 0 &&
         (path[rule->length] == '/' || path[rule->length] == '\0');
}

// The index of the longest path that fits; negative when none does.
static int Match(const struct Rules* rules, const char* path) {
  int best = -1;
  for (int i = 0; i < rules->count; ++i) {
    if (!IsAtOrUnder(path, &rules->rule[i])) continue;
    if (best < 0 || rules->rule[i].length > rules->rule[best].length) best = i;
  }
  return best;
}

// --- Where a file lies ---

static bool PathOfDescriptor(int fd, char* path) {
  char link[64];
  snprintf(link, sizeof(link), "/proc/self/fd/%d", fd);
  const ssize_t length = readlink(link, path, PATH_MAX - 1);
  if (length <= 0) return false;
  path[length] = '\0';
  return path[0] == '/';
}

// The path with every link on the way resolved, and the last one too when `follow`.
static bool CanonicalPath(int folder, const char* name, bool follow, char* path) {
  char whole[2 * PATH_MAX];
  if (name[0] == '\0') return PathOfDescriptor(folder, path);
  if (name[0] == '/') {
    snprintf(whole, sizeof(whole), "%s", name);
  } else {
    char base[PATH_MAX];
    if (folder == AT_FDCWD ? getcwd(base, sizeof(base)) == NULL : !PathOfDescriptor(folder, base))
      return false;
    // A folder that is open has no links in its path.
    if (!follow && strchr(name, '/') == NULL && strcmp(name, ".") != 0 && strcmp(name, "..") != 0) {
      return snprintf(path, PATH_MAX, "%s/%s", strcmp(base, "/") == 0 ? "" : base, name) < PATH_MAX;
    }
    snprintf(whole, sizeof(whole), "%s/%s", base, name);
  }
  char* last = strrchr(whole, '/');
  const bool ends_in_name = last[1] != '\0' && strcmp(last, "/.") != 0 && strcmp(last, "/..") != 0;
  if (follow || !ends_in_name) return realpath(whole, path) != NULL;
  *last = '\0';
  char parent[PATH_MAX];
  if (realpath(whole[0] == '\0' ? "/" : whole, parent) == NULL) return false;
  return snprintf(path, PATH_MAX, "%s/%s", strcmp(parent, "/") == 0 ? "" : parent, last + 1) < PATH_MAX;
}

// --- Owners and disks ---

static void SetOwner(const char* path, struct stat* status) {
  if (strncmp(path, "/proc/", 6) == 0 || strncmp(path, "/dev/", 5) == 0) return;
  const int owner = Match(&owners, path);
  if (owner >= 0) {
    status->st_uid = owners.rule[owner].user;
    status->st_gid = owners.rule[owner].group;
  }
  const int mount = Match(&mounts, path);
  if (mount >= 0) status->st_dev = makedev(kDeviceMajor, (unsigned)mount);
}

#define NEXT(name) (__extension__(__typeof__(&(name))) dlsym(RTLD_NEXT, #name))

static int StatAt(int folder, const char* name, struct stat* status, int flags) {
  const int result = NEXT(fstatat)(folder, name, status, flags);
  if (result != 0) return result;
  const int saved = errno;
  char path[PATH_MAX];
  if (CanonicalPath(folder, name, (flags & AT_SYMLINK_NOFOLLOW) == 0, path)) SetOwner(path, status);
  errno = saved;
  return 0;
}

EXPORTED int fstatat(int folder, const char* name, struct stat* status, int flags) {
  return StatAt(folder, name, status, flags);
}
EXPORTED int stat(const char* name, struct stat* status) {
  return StatAt(AT_FDCWD, name, status, 0);
}
EXPORTED int lstat(const char* name, struct stat* status) {
  return StatAt(AT_FDCWD, name, status, AT_SYMLINK_NOFOLLOW);
}
EXPORTED int fstat(int fd, struct stat* status) {
  return StatAt(fd, "", status, AT_EMPTY_PATH);
}

#if defined(__LP64__)
// On 64-bit systems both forms of the structures are the same.
EXPORTED int fstatat64(int folder, const char* name, struct stat64* status, int flags) {
  return StatAt(folder, name, (struct stat*)status, flags);
}
EXPORTED int stat64(const char* name, struct stat64* status) {
  return StatAt(AT_FDCWD, name, (struct stat*)status, 0);
}
EXPORTED int lstat64(const char* name, struct stat64* status) {
  return StatAt(AT_FDCWD, name, (struct stat*)status, AT_SYMLINK_NOFOLLOW);
}
EXPORTED int fstat64(int fd, struct stat64* status) {
  return StatAt(fd, "", (struct stat*)status, AT_EMPTY_PATH);
}
#endif

EXPORTED FILE* setmntent(const char* file, const char* how) {
  const bool is_system = strcmp(file, "/proc/mounts") == 0 || strcmp(file, "/proc/self/mounts") == 0;
  return NEXT(setmntent)(is_system ? VIEW_MOUNTS : file, how);
}

// --- Free space ---

static bool StorageIsFull(void) {
  const int saved = errno;
  const bool full = access(VIEW_FULL_STORAGE, F_OK) == 0;
  errno = saved;
  return full;
}

// The value of the fault free-space, in bytes; negative when it is off.
static double FreeSpace(void) {
  if (StorageIsFull()) return 0;
  const int saved = errno;
  double bytes = -1;
  char text[64];
  char* unit = NULL;
  FILE* file = fopen(VIEW_FREE_SPACE, "re");
  if (file != NULL) {
    if (fgets(text, sizeof(text), file) != NULL) bytes = strtod(text, &unit);
    fclose(file);
  }
  errno = saved;
  if (unit == text) return -1;
  const char* units = "KMG";
  const char* found = unit == NULL || *unit == '\0' ? NULL : strchr(units, *unit);
  for (const char* step = units; found != NULL && step <= found; ++step) bytes *= 1024;
  return bytes;
}

#define LIMIT_FREE_BLOCKS(status, block_size)                                             \
  do {                                                                                    \
    const double bytes = FreeSpace();                                                     \
    if (bytes >= 0) {                                                                     \
      const double blocks = bytes / (double)(block_size);                                 \
      if (blocks < (double)(status)->f_bavail || bytes > 0) {                             \
        (status)->f_bavail = (__typeof__((status)->f_bavail))blocks;                      \
        (status)->f_bfree = (__typeof__((status)->f_bfree))blocks;                        \
      }                                                                                   \
      if ((status)->f_blocks < (status)->f_bfree) (status)->f_blocks = (status)->f_bfree; \
    }                                                                                     \
  } while (0)

EXPORTED int statvfs(const char* path, struct statvfs* status) {
  const int result = NEXT(statvfs)(path, status);
  if (result == 0) LIMIT_FREE_BLOCKS(status, status->f_frsize);
  return result;
}
EXPORTED int statfs(const char* path, struct statfs* status) {
  const int result = NEXT(statfs)(path, status);
  if (result == 0) LIMIT_FREE_BLOCKS(status, status->f_bsize);
  return result;
}

#if defined(__LP64__)
EXPORTED int statvfs64(const char* path, struct statvfs64* status) {
  return statvfs(path, (struct statvfs*)status);
}
EXPORTED int statfs64(const char* path, struct statfs64* status) {
  return statfs(path, (struct statfs*)status);
}
#endif

// --- Writing to a full storage ---

// True for a file of the phone's storage while that is full. Pipes, sockets and devices are never full.
static bool HasNoRoom(int fd) {
  if (!StorageIsFull()) return false;
  struct stat status;
  char path[PATH_MAX];
  const int saved = errno;
  const bool refused = NEXT(fstat)(fd, &status) == 0 && S_ISREG(status.st_mode) &&
                       PathOfDescriptor(fd, path) && strncmp(path, "/dev/", 5) != 0 &&
                       strncmp(path, "/proc/", 6) != 0;
  errno = saved;
  return refused;
}

EXPORTED ssize_t write(int fd, const void* data, size_t size) {
  static ssize_t (*next)(int, const void*, size_t);
  if (next == NULL) next = NEXT(write);
  if (size > 0 && HasNoRoom(fd)) {
    errno = ENOSPC;
    return -1;
  }
  return next(fd, data, size);
}

// A full storage has no room for a new folder entry either.
static bool HasNoRoomForNew(int folder, const char* name) {
  if (!StorageIsFull()) return false;
  const int saved = errno;
  char path[PATH_MAX];
  const bool refused = faccessat(folder, name, F_OK, AT_SYMLINK_NOFOLLOW) != 0 &&
                       CanonicalPath(folder, name, false, path) && strncmp(path, "/dev/", 5) != 0 &&
                       strncmp(path, "/proc/", 6) != 0;
  errno = refused ? ENOSPC : saved;
  return refused;
}

static int OpenAt(int folder, const char* name, int flags, mode_t mode) {
  if ((flags & O_CREAT) != 0 && HasNoRoomForNew(folder, name)) return -1;
  return NEXT(openat)(folder, name, flags, mode);
}

// The mode follows only where a file may be made.
#define TAKE_MODE(flags)                        \
  mode_t mode = 0;                              \
  if (((flags) & (O_CREAT | O_TMPFILE)) != 0) { \
    va_list list;                               \
    va_start(list, flags);                      \
    mode = (mode_t)va_arg(list, unsigned);      \
    va_end(list);                               \
  }

EXPORTED int open(const char* name, int flags, ...) {
  TAKE_MODE(flags)
  return OpenAt(AT_FDCWD, name, flags, mode);
}
EXPORTED int openat(int folder, const char* name, int flags, ...) {
  TAKE_MODE(flags)
  return OpenAt(folder, name, flags, mode);
}
EXPORTED int open64(const char* name, int flags, ...) {
  TAKE_MODE(flags)
  return OpenAt(AT_FDCWD, name, flags | O_LARGEFILE, mode);
}
EXPORTED int openat64(int folder, const char* name, int flags, ...) {
  TAKE_MODE(flags)
  return OpenAt(folder, name, flags | O_LARGEFILE, mode);
}
EXPORTED int mkdirat(int folder, const char* name, mode_t mode) {
  return HasNoRoomForNew(folder, name) ? -1 : NEXT(mkdirat)(folder, name, mode);
}
EXPORTED int mkdir(const char* name, mode_t mode) {
  return mkdirat(AT_FDCWD, name, mode);
}

// How toybox copies between files.
EXPORTED long syscall(long number, ...) {
  static long (*next)(long, ...);
  if (next == NULL) next = NEXT(syscall);
  long argument[6];
  va_list list;
  va_start(list, number);
  for (int i = 0; i < 6; ++i) argument[i] = va_arg(list, long);
  va_end(list);
  if (number == SYS_copy_file_range && HasNoRoom((int)argument[2])) {
    errno = ENOSPC;
    return -1;
  }
  return next(number, argument[0], argument[1], argument[2], argument[3], argument[4], argument[5]);
}

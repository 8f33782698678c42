#include <sys/statvfs.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "tools/phone/device/programs/programs.h"

namespace darokleim::phone {

namespace {

// "11.6G", "4.0K": the units of the toolbox of Android 6 and before.
std::string Size(unsigned long long bytes) {
  double value = static_cast<double>(bytes) / 1024;
  char unit = 'K';
  for (const char next : {'M', 'G'}) {
    if (value < 1024) break;
    value /= 1024;
    unit = next;
  }
  char text[32];
  std::snprintf(text, sizeof(text), "%.1f%c", value, unit);
  return text;
}

int PrintLine(const std::string& path) {
  struct statvfs status;
  if (statvfs(path.c_str(), &status) != 0) {
    std::fprintf(stderr, "%s: %s\n", path.c_str(), std::strerror(errno));
    return 1;
  }
  const unsigned long long block = status.f_frsize;
  std::printf("%-20s %9s %9s %9s   %lu\n", path.c_str(), Size(block * status.f_blocks).c_str(),
              Size(block * (status.f_blocks - status.f_bfree)).c_str(), Size(block * status.f_bavail).c_str(),
              static_cast<unsigned long>(status.f_bsize));
  return 0;
}

}  // namespace

// The df of a phone with toolbox, which has no options; later phones have toybox's.
int RunDf(const Words& words) {
  std::printf("Filesystem               Size     Used     Free   Blksize\n");
  if (!words.empty()) {
    int status = 0;
    for (const std::string& path : words) status |= PrintLine(path);
    return status;
  }
  for (const char* path : {"/dev", "/system", "/data", "/cache", "/storage/emulated"}) PrintLine(path);
  return 0;
}

}  // namespace darokleim::phone

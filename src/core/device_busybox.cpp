// AdbConfigDeviceBusybox: the tools that a device's own system may lack.
#include "darokleim.h"
#include "src/core/sdk.h"

int AdbConfigDeviceBusybox(const char* serial, const bool* cancel) {
  constexpr char kDevicePath[] = "/data/local/tmp/busybox";
  bool exists = false;
  if (const int code = AdbCheckFileExisted(serial, kDevicePath, &exists, cancel)) return code;
  if (!exists) {
    if (const int code = AdbPushFile(serial, s_busybox_fullpath.c_str(), kDevicePath, cancel)) return code;
  }
  return AdbChmodFile(serial, kDevicePath, "a+x", cancel);
}

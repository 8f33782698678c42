#include <darokleim.h>
#include <stddef.h>

// The channel's status before it was started.
enum { kNotStarted = 3001 };

int main(void) {
  char devices[64];
  char* block = NULL;
  AdbFreeResource(&block);
  return AdbSdkInit(NULL, NULL, NULL) == ADB_RESULT_INVALID_PARAM &&
                 AdbGetDevices(devices, (int)sizeof devices, NULL) == kNotStarted
             ? 0
             : 1;
}

// A host application in C that uses the shared library: c_host DIRECTORY, an empty directory with write permission.
#include <string.h>
#include <sys/stat.h>

#include "darokleim.h"
#include "tests/interface/expect.h"

static void ExpectNullsRefused(const char* directory) {
  EXPECT(AdbSdkInit(NULL, directory, directory) == ADB_RESULT_INVALID_PARAM);
  EXPECT(AdbSdkInit(directory, NULL, directory) == ADB_RESULT_INVALID_PARAM);
  EXPECT(AdbSdkInit(directory, directory, NULL) == ADB_RESULT_INVALID_PARAM);
  EXPECT(AdbGetDevices(NULL, 16, NULL) == ADB_RESULT_INVALID_PARAM);
  EXPECT(AdbReboot(NULL, NULL) == ADB_RESULT_INVALID_PARAM);
}

static void ExpectReleaseOfNothing(void) {
  char* block = NULL;
  AdbFreeResource(&block);
  EXPECT(block == NULL);
}

static void ExpectChannelNotStarted(void) {
  char buffer[16] = "untouched";
  EXPECT(AdbGetDevices(buffer, (int)sizeof buffer, NULL) == ADB_CHANNEL_NOT_INITIALISED);
  EXPECT(strcmp(buffer, "untouched") == 0);

  char* list = buffer;
  int list_len = 16;
  EXPECT(AdbGetDevicesEx(&list, &list_len, NULL) == ADB_CHANNEL_NOT_INITIALISED);
  EXPECT(list == NULL);
  EXPECT(list_len == 0);

  EXPECT(AdbReboot("0123456789ABCDEF", NULL) == ADB_CHANNEL_NOT_INITIALISED);
  EXPECT(AdbReconnectDevice() == ADB_CHANNEL_NOT_INITIALISED);
  EXPECT(AdbAuthenticateShow("0123456789ABCDEF", NULL) == ADB_RESULT_PROTOCOL_FAULT);
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const char* directory = argv[1];
  mkdir(directory, 0700);

  ExpectNullsRefused(directory);
  ExpectReleaseOfNothing();
  ExpectChannelNotStarted();
  EXPECT(AdbSdkInit(directory, directory, directory) == ADB_RESULT_RESOURCE_INCOMPLETE);
  EXPECT(AdbSdkInit(directory, directory, directory) == ADB_RESULT_OK);
  ExpectChannelNotStarted();
  return failures == 0 ? 0 : 1;
}

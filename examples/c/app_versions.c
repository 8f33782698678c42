// Lists the applications that the user of a phone has installed, with their versions.
//
//   app_versions RESOURCES [SERIAL]
//
// RESOURCES is a folder with the programs adb (for this computer) and busybox (for the phone). Without SERIAL it
// takes the first phone that is ready.
#include <darokleim.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char log_context[] = "app_versions";

static void Complain(const char* what, int code) {
  if (code == ADB_RESULT_DEVICE_UNAUTHORIZED) {
    fprintf(stderr, "%s: allow USB debugging on the screen of the phone\n", what);
  } else if (code == ADB_CHANNEL_CANNOT_START_ADB) {
    fprintf(stderr, "%s: the adb in the resource folder cannot be started\n", what);
  } else {
    fprintf(stderr, "%s: error %d\n", what, code);
  }
}

static int Start(const char* resources) {
  const char* temporary = getenv("TMPDIR");
  setenv("DAROKLEIM_CHANNEL_ASSIST", "1", 0);  // phones of every generation, paths of every kind
  return AdbSdkInit(resources, log_context, temporary != NULL ? temporary : "/tmp");
}

// Copies the serial of the first phone that is ready; an empty text when there is none.
static int FindPhone(char* serial, size_t size) {
  serial[0] = '\0';
  char* list = NULL;
  int list_len = 0;
  const int code = AdbGetDevicesEx(&list, &list_len, NULL);
  if (code != ADB_RESULT_OK || list == NULL) return code;
  for (char* entry = strtok(list, ";"); entry != NULL; entry = strtok(NULL, ";")) {
    char* state = strchr(entry, '-');
    if (state == NULL || strcmp(state, "-device") != 0) continue;
    *state = '\0';
    snprintf(serial, size, "%s", entry);
    break;
  }
  AdbFreeResource(&list);
  return code;
}

static int PrintVersion(const char* serial, const char* package) {
  char version[4096];  // as AdbGetAppVersion requires
  const int code = AdbGetAppVersion(serial, package, version, (int)sizeof version, NULL);
  if (code == ADB_RESULT_NOT_FOUND) {
    printf("%-40s (no version number)\n", package);
    return ADB_RESULT_OK;
  }
  if (code == ADB_RESULT_OK) printf("%-40s %s\n", package, version);
  return code;
}

static int PrintVersions(const char* serial) {
  static const char prefix[] = "package:";
  char* list = NULL;
  int list_len = 0;
  int code = AdbGetPackagesNameOfInstalled(serial, "-3", &list, &list_len, NULL);
  if (code == ADB_RESULT_OK && list_len > 0) {
    list[list_len - 1] = '\0';  // replaces the last line break; the list does not end in a zero byte
    for (char* line = strtok(list, "\r\n"); line != NULL; line = strtok(NULL, "\r\n")) {
      if (strncmp(line, prefix, strlen(prefix)) != 0) continue;
      code = PrintVersion(serial, line + strlen(prefix));
      if (code != ADB_RESULT_OK) break;
    }
  }
  AdbFreeResource(&list);
  return code;
}

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3) {
    fprintf(stderr, "usage: %s RESOURCES [SERIAL]\n", argv[0]);
    return 2;
  }
  int code = Start(argv[1]);
  if (code != ADB_RESULT_OK) {
    Complain(argv[1], code);
    return 1;
  }

  char serial[128];
  if (argc == 3) {
    snprintf(serial, sizeof serial, "%s", argv[2]);
  } else {
    code = FindPhone(serial, sizeof serial);
    if (code != ADB_RESULT_OK || serial[0] == '\0') {
      Complain("no phone is ready", code);
      return 1;
    }
  }

  code = PrintVersions(serial);
  if (code != ADB_RESULT_OK) Complain(serial, code);
  return code == ADB_RESULT_OK ? 0 : 1;
}

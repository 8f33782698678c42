// Stands in for adb where the time of adb itself would hide that of the library: answers at once what a phone with
// the serial QUICK answers to the calls of calls.cpp.
#define _POSIX_C_SOURCE 200809L
#include <stdio.h>
#include <string.h>
#include <time.h>

struct Answer {
  const char* words;  // somewhere in the command
  const char* text;
  int exit_status;
};

static const struct Answer kAnswers[] = {
    {"devices", "List of devices attached\nQUICK\tdevice\n\n", 0},
    {"NOBODY", "error: device 'NOBODY' not found\n", 1},
    {"getprop ro.product.model", "Pixel 7\r\n", 0},
    {"getprop ro.crypto.state", "encrypted\r\n", 0},
    {"getprop", "value\r\n", 0},
    {"date", "2026-03-04 05:06:07\r\n", 0},
    {"ls -l /storage", "total 0\ndrwxrwx--x 4 root sdcard_rw 60 2026-03-04 05:06 emulated\n", 0},
    {"ls -l", "total 8\r\n-rw-rw---- 1 root sdcard_rw 1234567 2026-03-04 05:06 my photo.jpg\r\n", 0},
    {"stat", "  Size: 1234567\t Blocks: 2416\r\n1772600767\r\n", 0},
    {"missing", "ls: /sdcard/missing: No such file or directory\n", 1},
    {"df ", "/dev/fuse 111111 22222 88889 20% /storage/emulated\n", 0},
    {"find /sdcard", "/sdcard/endurance/my photo.jpg\n", 0},
    {"pm list packages", "package:com.android.shell\npackage:com.android.settings\n", 0},
    {"dumpsys package", "Unable to find package: none.such\n", 0},
    {"pm path", "package:/system/priv-app/Shell/Shell.apk\n", 0},
    {"push", "1 file pushed. 12.3 MB/s (7 bytes in 0.001s)\n", 0},
    {"pull", "1 file pulled. 12.3 MB/s (7 bytes in 0.001s)\n", 0},
    {"forward", "", 0},
    {"cp ", "", 0},
    {"rm ", "", 0},
    {"input text", "", 0},
    {"ls ", "/sdcard/endurance/my photo.jpg\n", 0},
};

static void JoinWords(int count, char** words, char* text, size_t size) {
  text[0] = '\0';
  for (int i = 1; i < count; ++i) {
    strncat(text, words[i], size - strlen(text) - 1);
    strncat(text, " ", size - strlen(text) - 1);
  }
}

static const struct timespec kLineEvery = {0, 1000000};

int main(int argc, char** argv) {
  char command[4096];
  JoinWords(argc, argv, command, sizeof command);
  if (strstr(command, "logcat") != NULL) {
    for (;;) {
      puts("03-04 05:06:07.890  1000  1001 I Tag: a line of the log");
      fflush(stdout);
      nanosleep(&kLineEvery, NULL);
    }
  }
  for (size_t i = 0; i < sizeof kAnswers / sizeof *kAnswers; ++i) {
    if (strstr(command, kAnswers[i].words) == NULL) continue;
    fputs(kAnswers[i].text, stdout);
    return kAnswers[i].exit_status;
  }
  fprintf(stderr, "error: nothing is known of%s\n", command);
  return 1;
}

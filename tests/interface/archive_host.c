// A host with a command channel and a log of its own: the whole archive is linked in, and needs only these six
// functions besides the standard libraries and JsonCpp.
#include <stddef.h>
#include <string.h>

#include "darokleim.h"
#include "src/platform/command_channel.h"
#include "src/platform/log_library.h"
#include "tests/interface/expect.h"

enum { kStatus = 1077 };

static char reply[] = "List of devices attached\nABC\tdevice\n";
static int released = 0;
static int logged = 0;

int InitAdbCommuncation2Server(const char* adb_path, const char* log_dir, const void* log_context) {
  (void)adb_path, (void)log_dir, (void)log_context;
  return 0;
}

int ExecuteAdbCommandSynchronization(const char* args, const bool* cancel, char** out, int* out_len) {
  (void)cancel;
  if (strcmp(args, " devices") != 0) return kStatus;
  *out = reply;
  *out_len = (int)strlen(reply);
  return 0;
}

int ExecuteAdbCommandAnsynchronization(const char* args, const bool* cancel, void* context, void* on_output) {
  (void)args, (void)cancel, (void)context, (void)on_output;
  return kStatus;
}

void ReleaseAdbOutBuffer(char* out) {
  if (out == reply) ++released;
}

bool InitLogEx(const void* log_context, const char* module, const char* log_file_path) {
  (void)log_context, (void)module, (void)log_file_path;
  return true;
}

void LogEx(const char* module, int level, const char* format, ...) {
  (void)module, (void)level, (void)format;
  ++logged;
}

int main(void) {
  EXPECT(AdbReconnectDevice() == kStatus);

  char* list = NULL;
  int list_len = 0;
  EXPECT(AdbGetDevicesEx(&list, &list_len, NULL) == ADB_RESULT_OK);
  EXPECT(list != NULL && strcmp(list, "ABC-device;") == 0);
  EXPECT(released == 1);
  EXPECT(logged > 0);
  AdbFreeResource(&list);
  EXPECT(list == NULL);
  return failures == 0 ? 0 : 1;
}

// The SDK and the client in one program: neither disturbs the other.
#include <darokleim.h>
#include <darokleim/client.h>

int main(void) {
  dk_context* context = NULL;
  dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
  options.server = "tcp:127.0.0.1:1";  // nothing listens there
  if (dk_context_new(&options, &context, NULL) != DK_OK) return 1;

  char devices[64];
  if (AdbSdkInit(NULL, NULL, NULL) != ADB_RESULT_INVALID_PARAM) return 2;
  if (AdbGetDevices(devices, (int)sizeof devices, NULL) != ADB_CHANNEL_NOT_INITIALISED) return 3;
  int version = 0;
  const dk_code code = dk_server_version(context, &version, NULL);
  dk_context_free(context);
  return code == DK_NO_SERVER ? 0 : 4;
}

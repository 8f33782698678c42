#include <darokleim/client.h>
#include <string.h>

// A port on which nothing listens.
static const char kNoServer[] = "tcp:127.0.0.1:1";

int main(void) {
  dk_context* context = NULL;
  dk_error* error = NULL;
  dk_call call = DK_CALL_INIT;
  call.error = &error;
  dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
  options.server = kNoServer;

  if (strcmp(dk_version(), DK_VERSION) != 0) return 1;
  if (dk_context_new(&options, &context, &call) != DK_OK) return 2;
  int version = 0;
  const dk_code code = dk_server_version(context, &version, &call);
  const int failed = code != DK_NO_SERVER || dk_error_code(error) != DK_NO_SERVER;
  dk_error_free(error);
  dk_context_free(context);
  return failed ? 3 : 0;
}

// The header needs no other header before it.
#include "darokleim/client.h"

int IncludedAsC(void);
int IncludedAsC(void) {
  const dk_call call = DK_CALL_INIT;
  const dk_context_options context = DK_CONTEXT_OPTIONS_INIT;
  const dk_walk_options walk = DK_WALK_OPTIONS_INIT;
  const dk_transfer_options transfer = DK_TRANSFER_OPTIONS_INIT;
  const dk_run_options run = DK_RUN_OPTIONS_INIT;
  const dk_install_options install = DK_INSTALL_OPTIONS_INIT;
  const dk_log_options log = DK_LOG_OPTIONS_INIT;
  return call.size == sizeof call && context.size == sizeof context && walk.size == sizeof walk &&
                 transfer.size == sizeof transfer && run.size == sizeof run &&
                 install.size == sizeof install && log.size == sizeof log
             ? DK_OK
             : DK_INVALID_ARGUMENT;
}

#if DK_VERSION_NUMBER < 2000109
#error "the version is a number that the preprocessor can compare"
#endif

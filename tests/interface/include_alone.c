// The header needs no other header before it.
#include "darokleim.h"

int IncludedAsC(void);
int IncludedAsC(void) {
  return ADB_RESULT_OK;
}

#if DAROKLEIM_VERSION_NUMBER < 2000109
#error "the version is a number that the preprocessor can compare"
#endif

static const char version[] = DAROKLEIM_VERSION;

const char* Version(void);
const char* Version(void) {
  return version;
}

// The header needs nothing before it.
#include "darokleim.h"

int IncludedAsC(void);
int IncludedAsC(void) {
  return ADB_RESULT_OK;
}

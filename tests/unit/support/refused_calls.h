// What calls with a null argument do.
#ifndef DAROKLEIM_TESTS_UNIT_SUPPORT_REFUSED_CALLS_H
#define DAROKLEIM_TESTS_UNIT_SUPPORT_REFUSED_CALLS_H

#include <string>

#include "tests/unit/support/journal.h"

namespace darokleim::test {

// The journal of refused calls of a function with the standard log lines: no command, no leave line.
inline Journal RefusedCalls(const std::string& function, int times) {
  Journal journal;
  for (int i = 0; i < times; ++i) {
    journal.push_back(Info(function + " Enter."));
    journal.push_back(Error(function + ", invalid param."));
  }
  return journal;
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_UNIT_SUPPORT_REFUSED_CALLS_H

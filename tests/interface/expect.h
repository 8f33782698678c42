// Checks for the C programs here, which use no test framework.
#ifndef DAROKLEIM_TESTS_INTERFACE_EXPECT_H
#define DAROKLEIM_TESTS_INTERFACE_EXPECT_H

#include <stdio.h>

static int failures = 0;

#define EXPECT(condition)                                                     \
  do {                                                                        \
    if (!(condition)) {                                                       \
      fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, __LINE__, #condition); \
      ++failures;                                                             \
    }                                                                         \
  } while (0)

#endif  // DAROKLEIM_TESTS_INTERFACE_EXPECT_H

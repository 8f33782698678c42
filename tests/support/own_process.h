// Parts of tests that change the whole process they run in.
#ifndef DAROKLEIM_TESTS_SUPPORT_OWN_PROCESS_H
#define DAROKLEIM_TESTS_SUPPORT_OWN_PROCESS_H

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>

#include "tests/support/process.h"

namespace darokleim::test {

// For what changes a whole process. The body's expectations count.
template <typename Body>
void InProcessOfItsOwn(Body body) {
  const int status = WaitStatusOfFork([&] {
    try {
      body();
    } catch (const std::exception& e) {
      ADD_FAILURE() << e.what();
    }
    fflush(nullptr);
    if (testing::Test::HasFailure()) _exit(1);
  });
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "wait status " << status;
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_OWN_PROCESS_H

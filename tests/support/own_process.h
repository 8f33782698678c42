// Parts of tests that change the whole process they run in.
#ifndef DAROKLEIM_TESTS_SUPPORT_OWN_PROCESS_H
#define DAROKLEIM_TESTS_SUPPORT_OWN_PROCESS_H

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>

namespace darokleim::test {

// For what changes a whole process. The body's expectations count.
template <typename Body>
void InProcessOfItsOwn(Body body) {
  fflush(nullptr);
  const pid_t pid = fork();
  ASSERT_NE(pid, -1);
  if (pid == 0) {
    try {
      body();
    } catch (const std::exception& e) {
      ADD_FAILURE() << e.what();
    }
    fflush(nullptr);
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(pid, &status, 0), pid);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "wait status " << status;
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_OWN_PROCESS_H

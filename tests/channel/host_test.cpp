// Hosts that treat descriptors, signals and children in ways of their own, or have run out of something.
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/stat.h>

#if defined(__linux__)
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <stddef.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#endif

#include <atomic>
#include <filesystem>

#include "tests/channel/channel_run.h"
#include "tests/support/file_content.h"
#include "tests/support/odd_host.h"
#include "tests/support/sanitizers.h"

namespace darokleim::channel {
namespace {

class HostTest : public ChannelTest {
 protected:
  // What must go on as ever, whatever the host is like.
  void ExpectEverythingWorks() {
    EXPECT_EQ(RunAdb(" print:a error:b").output, "ab");
    EXPECT_EQ(RunAdb(" exit:3").status, 1003);
    EXPECT_EQ(RunAdb(" signal:9").status, 2009);
    EXPECT_EQ(RunAdb(" flood:3000000").output.size(), 3000000u);
    ExpectCancelWorks();
  }
  void ExpectCancelWorks() {
    bool cancel = false;
    std::thread other([&] {
      std::this_thread::sleep_for(milliseconds(40));
      __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
    });
    EXPECT_EQ(RunAdb(" ignore:15 sleep:60000", &cancel).status, 3003);
    other.join();
  }
  // Where nobody can know how adb ended.
  void ExpectTheTextDecides() {
    EXPECT_EQ(RunAdb(" print:a error:b").output, "ab");
    EXPECT_EQ(RunAdb(" exit:3").status, 0);
    EXPECT_EQ(RunAdb(" error:error:\\sclosed\\n exit:1").status, 1001);
    EXPECT_EQ(RunAdb(" flood:3000000").output.size(), 3000000u);
    EXPECT_EQ(RunAdb(" close sleep:50").status, 0);
    ExpectServerDoesNotHold();
    ExpectCancelWorks();
  }
  void ExpectServerDoesNotHold() {
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(RunAdb(" server:" + File("held") + " print:a").output, "a");
    EXPECT_LT(Since(start), milliseconds(20000));
    EndProcess(PidIn(File("held")));
  }
};

TEST_F(HostTest, WithItsStandardStreamsClosed) {
  test::InProcessOfItsOwn([&] {
    const int saved = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 10);
    for (const int fd : {0, 1, 2}) close(fd);
    const Result words = RunAdb(" print:a error:b");
    const Result input = RunAdb(" input");
    const Result descriptors = RunAdb(" descriptors");
    const bool still_closed = fcntl(0, F_GETFD) == -1 && fcntl(1, F_GETFD) == -1 && fcntl(2, F_GETFD) == -1;
    dup2(saved, STDOUT_FILENO);
    EXPECT_EQ(words.output, "ab");
    EXPECT_EQ(input.output, "end\n");
    EXPECT_EQ(descriptors.output, "0\n1\n2\n");
    EXPECT_TRUE(still_closed);
  });
}

#if defined(__linux__)
// The host's own prints must not get into a pipe that has taken the number of a closed stream.
TEST_F(HostTest, DoesNotPrintIntoTheAnswer) {
  test::InProcessOfItsOwn([&] {
    const int saved = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 10);
    close(STDOUT_FILENO);
    std::atomic<bool> done = false;
    std::thread host([&] {
      while (!done) {
        // Not by the C library, where a sanitizer would object to a host that writes to what it has closed.
        if (syscall(SYS_write, STDOUT_FILENO, "host", 4) == 4) std::this_thread::yield();
      }
    });
    const Result result = RunAdb(" print:a sleep:100 print:b");
    done = true;
    host.join();
    dup2(saved, STDOUT_FILENO);
    EXPECT_EQ(result.output, "ab");
  });
}

#endif

TEST_F(HostTest, WithEverySignalBlocked) {
  test::InProcessOfItsOwn([&] {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
    EXPECT_EQ(RunAdb(" signals").output, "");
    EXPECT_EQ(RunAdb(" signal:15").status, 2015);
    ExpectEverythingWorks();
  });
}

TEST_F(HostTest, WithSignalsIgnored) {
  test::InProcessOfItsOwn([&] {
    for (const int number : {SIGPIPE, SIGTERM, SIGINT, SIGHUP}) signal(number, SIG_IGN);
    EXPECT_EQ(RunAdb(" signals").output, "");
    EXPECT_EQ(RunAdb(" signal:13").status, 2013);
    ExpectEverythingWorks();
  });
}

TEST_F(HostTest, InterruptedBySignals) {
  test::InProcessOfItsOwn([&] {
    const test::InterruptedBySignals interrupted;
    ExpectEverythingWorks();
    EXPECT_EQ(RunAdb(" print:a close sleep:200 exit:5").status, 1005);
  });
}

TEST_F(HostTest, IgnoringItsChildren) {
  test::InProcessOfItsOwn([&] {
    signal(SIGCHLD, SIG_IGN);
    ExpectTheTextDecides();
  });
}

TEST_F(HostTest, CollectingEveryChildItself) {
  test::InProcessOfItsOwn([&] {
    std::atomic<bool> done = false;
    std::thread collector([&] {
      while (!done) {
        if (waitpid(-1, nullptr, 0) == -1) std::this_thread::yield();
      }
    });
    // The channel may be the first to collect a child now and then: of many, some are lost to the host.
    for (int i = 0; i < 50; ++i) {
      const int status = RunAdb(" print:a exit:3").status;
      EXPECT_TRUE(status == 0 || status == 1003) << status;
    }
    EXPECT_EQ(RunAdb(" error:error:\\sclosed\\n exit:1").status, 1001);
    ExpectServerDoesNotHold();
    ExpectCancelWorks();
    done = true;
    collector.join();
  });
}

TEST_F(HostTest, OutOfDescriptors) {
  test::InProcessOfItsOwn([&] {
    rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = 64;
    setrlimit(RLIMIT_NOFILE, &limit);
    std::vector<int> taken;
    for (int fd = 0; (fd = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;) taken.push_back(fd);
    ASSERT_EQ(errno, EMFILE);

    const Result result = RunAdb(" exit:0");
    EXPECT_EQ(result.status, 3006);
    EXPECT_FALSE(result.handed_out);
    EXPECT_EQ(ExecuteAdbCommandAnsynchronization(" exit:0", nullptr, nullptr, nullptr), 3006);
    // With only a few left a call finds its way or says that it cannot.
    for (int left = 1; left <= 6; ++left) {
      close(taken.back());
      taken.pop_back();
      const Result tight = RunAdb(" flood:500000 exit:3");
      EXPECT_EQ(tight.status, left < 2 ? 3006 : 1003) << left;
    }
    for (const int fd : taken) close(fd);
    ExpectEverythingWorks();
  });
}

TEST_F(HostTest, OutOfProcesses) {
  // A superuser has no limit: another user then, who must be able to reach adb.
  std::filesystem::permissions(directory_.path(), std::filesystem::perms(0777));
  std::filesystem::copy_file(DAROKLEIM_MISBEHAVING_ADB, File("adb"));
  UseAdb(File("adb"));
  test::InProcessOfItsOwn([&] {
    constexpr uid_t kNobody = 65534;
    if (geteuid() == 0) {
      ASSERT_EQ(setuid(kNobody), 0);
    }
    rlimit limit;
    getrlimit(RLIMIT_NPROC, &limit);
    const rlim_t usual = limit.rlim_cur;
    limit.rlim_cur = 1;
    setrlimit(RLIMIT_NPROC, &limit);
    EXPECT_EQ(RunAdb(" exit:0").status, 3006);
    EXPECT_EQ(ExecuteAdbCommandAnsynchronization(" exit:0", nullptr, nullptr, nullptr), 3006);
    limit.rlim_cur = usual;
    setrlimit(RLIMIT_NPROC, &limit);
    EXPECT_EQ(RunAdb(" exit:3").status, 1003);
  });
}

#if defined(__linux__) && !defined(DAROKLEIM_SANITIZED)  // a sanitizer's own memory is far over any limit
TEST_F(HostTest, OutOfMemory) {
  test::InProcessOfItsOwn([&] {
    // Takes the block that the channel may have kept from an earlier command, for good.
    char* kept = nullptr;
    int length = 0;
    ASSERT_EQ(ExecuteAdbCommandSynchronization(" flood:5000000", nullptr, &kept, &length), 0);

    size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    rlimit limit;
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = pages * static_cast<size_t>(sysconf(_SC_PAGESIZE)) + 400 * 1024 * 1024;
    setrlimit(RLIMIT_AS, &limit);
    const Result result = RunAdb(" pid:" + File("pid") + " flood:1000000000");
    EXPECT_EQ(result.status, 3006);
    EXPECT_FALSE(result.handed_out);
    EXPECT_FALSE(Runs(PidIn(File("pid"))));
    EXPECT_EQ(RunAdb(" flood:20000000").output.size(), 20000000u);
  });
}
#endif

#if !defined(DAROKLEIM_SANITIZED)  // a sanitizer's allocator may be locked by another thread at the fork
TEST_F(HostTest, InAChildForkedWhileOthersRunCommands) {
  test::InProcessOfItsOwn([&] {
    constexpr int kChildren = 150;
    std::atomic<bool> done = false;
    std::vector<std::thread> others;
    for (int i = 0; i < 4; ++i) {
      others.emplace_back([&, i] {
        while (!done) {
          if (i % 2 == 0) {
            UseAdb(i == 0 ? DAROKLEIM_MISBEHAVING_ADB : "/missing");
          } else {
            ExecuteAdbCommandAnsynchronization(" exit:0", nullptr, nullptr, nullptr);
          }
        }
      });
    }
    for (int i = 0; i < kChildren; ++i) {
      const pid_t child = fork();
      if (child == 0) {
        alarm(20);  // ends a child that hangs
        UseAdb(DAROKLEIM_MISBEHAVING_ADB);
        const bool runs = RunAdb(" print:a exit:3").status == 1003;
        const int streams = ExecuteAdbCommandAnsynchronization(" exit:0", nullptr, nullptr, nullptr);
        _exit(runs && streams == 0 ? 0 : 1);
      }
      int status = -1;
      ASSERT_EQ(waitpid(child, &status, 0), child);
      EXPECT_EQ(status, 0) << i;
    }
    done = true;
    for (std::thread& other : others) other.join();
  });
}
#endif

TEST_F(HostTest, ChangingItsDirectory) {
  test::InProcessOfItsOwn([&] {
    for (const char* folder : {"own", "other"}) {
      std::filesystem::create_directories(File(folder) + "/resources");
      test::WriteFile(File(folder) + "/resources/adb", std::string("#!/bin/sh\necho ") + folder + "\n");
      chmod((File(folder) + "/resources/adb").c_str(), 0755);
    }
    std::filesystem::current_path(File("own"));
    UseAdb("resources/adb");
    std::filesystem::current_path(File("other"));
    EXPECT_EQ(RunAdb(" devices").output, "own\n");
  });
}

TEST_F(HostTest, WithAnotherThreadsChildren) {
  // A program that another thread starts at any moment must not hold this call's pipe.
  std::atomic<bool> done = false;
  std::thread other([&] {
    while (!done) {
      const pid_t pid = fork();
      if (pid == 0) {
        execl(DAROKLEIM_MISBEHAVING_ADB, "adb", "sleep:3000", nullptr);
        _exit(1);
      }
      std::this_thread::sleep_for(milliseconds(2));
      EndProcess(pid);
      if (pid > 0) waitpid(pid, nullptr, 0);
    }
  });
  for (int i = 0; i < 100; ++i) EXPECT_EQ(RunAdb(" print:a exit:3").status, 1003);
  done = true;
  other.join();
}

#if defined(__linux__)
// Makes a system call fail in this process, as a sandbox does.
void Forbid(unsigned call, int error) {
  const sock_filter instructions[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(error)),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program = {4, const_cast<sock_filter*>(instructions)};
  ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
  ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0);
}

// As on a kernel before 5.3, or in a sandbox.
void ForbidPidfds() {
  Forbid(SYS_pidfd_open, ENOSYS);
  ASSERT_EQ(syscall(SYS_pidfd_open, getpid(), 0), -1);
}

TEST_F(HostTest, WithoutPidfds) {
  test::InProcessOfItsOwn([&] {
    ForbidPidfds();
    ExpectEverythingWorks();
    ExpectServerDoesNotHold();
    EXPECT_EQ(RunAdb(" print:a close sleep:100 exit:4").status, 1004);
    for (const char* orders : {" sleep:60000", " ignore:15 flood-for-ever"}) {
      bool cancel = false;
      std::thread canceller([&] {
        PidIn(File("pid"));
        __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
      });
      EXPECT_EQ(RunAdb(" pid:" + File("pid") + orders, &cancel).status, 3003);
      canceller.join();
      EXPECT_FALSE(Runs(PidIn(File("pid"))));
      unlink(File("pid").c_str());
    }
  });
}

TEST_F(HostTest, WithoutSplice) {
  test::InProcessOfItsOwn([&] {
    for (const int error : {EPERM, ENOSYS, EINVAL}) {
      Forbid(SYS_splice, error);
      alarm(30);  // ends a call that hangs
      const Result result = RunAdb(" print:> flood:33554432 print:< exit:3");
      EXPECT_EQ(result.status, 1003);
      EXPECT_EQ(result.output.size(), 33554434u);
      EXPECT_TRUE(result.output.starts_with('>') && result.output.ends_with('<'));
    }
  });
}

TEST_F(HostTest, IgnoringItsChildrenWithoutPidfds) {
  test::InProcessOfItsOwn([&] {
    ForbidPidfds();
    signal(SIGCHLD, SIG_IGN);
    ExpectTheTextDecides();
  });
}
#endif

}  // namespace
}  // namespace darokleim::channel

// What a host may do around calls: interrupt them by signals, leave them no descriptor, or use standard streams that it has
// closed.
#ifndef DAROKLEIM_TESTS_SUPPORT_ODD_HOST_H
#define DAROKLEIM_TESTS_SUPPORT_ODD_HOST_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>

#if defined(__linux__)
#include <sys/syscall.h>
#endif

namespace darokleim::test {

// While one lives, a signal every 0.3 ms interrupts the thread that made it, without SA_RESTART.
class InterruptedBySignals {
 public:
  InterruptedBySignals() {
    struct sigaction interrupt = {};
    interrupt.sa_handler = [](int) {};
    sigaction(SIGUSR1, &interrupt, &before_);
    interrupter_ = std::thread([this, caller = pthread_self()] {
      while (!done_) {
        pthread_kill(caller, SIGUSR1);
        std::this_thread::sleep_for(std::chrono::microseconds(300));
      }
    });
  }
  ~InterruptedBySignals() {
    done_ = true;
    interrupter_.join();
    sigaction(SIGUSR1, &before_, nullptr);
  }
  InterruptedBySignals(const InterruptedBySignals&) = delete;
  InterruptedBySignals& operator=(const InterruptedBySignals&) = delete;

 private:
  struct sigaction before_ = {};
  std::atomic<bool> done_ = false;
  std::thread interrupter_;
};

// While one lives, the process gets no descriptor beyond those that it has.
class WithoutDescriptors {
 public:
  WithoutDescriptors() {
    if (getrlimit(RLIMIT_NOFILE, &before_) != 0) throw std::runtime_error("getrlimit");
    const rlimit none = {0, before_.rlim_max};
    if (setrlimit(RLIMIT_NOFILE, &none) != 0) throw std::runtime_error("setrlimit");
  }
  ~WithoutDescriptors() { EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &before_), 0); }
  WithoutDescriptors(const WithoutDescriptors&) = delete;
  WithoutDescriptors& operator=(const WithoutDescriptors&) = delete;

 private:
  rlimit before_ = {};
};

#if defined(__linux__)  // where a system call can be made without the C library
// While one lives, the process has no standard streams, and a thread of it uses them all the same. Afterwards it has its output again.
// For a process of its own.
class WithoutStandardStreams {
 public:
  WithoutStandardStreams() : saved_(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 10)) {
    for (const int stream : {0, 1, 2}) close(stream);
    // Not by the C library, where a sanitizer would object to a host that uses what it has closed.
    host_ = std::thread([this] {
      char byte;
      while (!done_) {
        for (const int stream : {1, 2}) syscall(SYS_write, stream, "host", 4);
        syscall(SYS_read, 0, &byte, 1);
        std::this_thread::yield();
      }
    });
  }
  ~WithoutStandardStreams() {
    done_ = true;
    host_.join();
    dup2(saved_, STDOUT_FILENO);
  }
  WithoutStandardStreams(const WithoutStandardStreams&) = delete;
  WithoutStandardStreams& operator=(const WithoutStandardStreams&) = delete;

  bool AreStillClosed() const {
    return fcntl(0, F_GETFD) == -1 && fcntl(1, F_GETFD) == -1 && fcntl(2, F_GETFD) == -1;
  }

 private:
  int saved_;
  std::atomic<bool> done_ = false;
  std::thread host_;
};
#endif

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_ODD_HOST_H

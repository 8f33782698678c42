#ifndef DAROKLEIM_TOOLS_CLI_HOST_QUIET_THREAD_H
#define DAROKLEIM_TOOLS_CLI_HOST_QUIET_THREAD_H

#include <pthread.h>
#include <signal.h>

#include <thread>
#include <utility>

namespace darokleim::cli {

// Starts a thread that receives no signals: Ctrl-C must interrupt the thread that works.
template <typename Work>
std::thread StartWithoutSignals(Work work) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  std::thread thread(std::move(work));
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return thread;
}

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_HOST_QUIET_THREAD_H

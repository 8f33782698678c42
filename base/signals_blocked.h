// Threads of a library run none of the host's signal handlers.
#ifndef DAROKLEIM_BASE_SIGNALS_BLOCKED_H
#define DAROKLEIM_BASE_SIGNALS_BLOCKED_H

#include <signal.h>

namespace darokleim::base {

// Threads that are started while this lives have all signals blocked but those of their own faults.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP}) sigdelset(&all, fault);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_;
};

}  // namespace darokleim::base

#endif  // DAROKLEIM_BASE_SIGNALS_BLOCKED_H

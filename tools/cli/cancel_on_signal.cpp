#include "tools/cli/cancel_on_signal.h"

#include <signal.h>

#include <initializer_list>

namespace darokleim::cli {
namespace {

bool cancel_flag = false;

extern "C" void SetCancelFlag(int /*signal*/) {
  __atomic_store_n(&cancel_flag, true, __ATOMIC_RELAXED);
}

}  // namespace

void CancelOnSignals() {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    sigaction(number, nullptr, &action);
    if (action.sa_handler == SIG_IGN) continue;
    action.sa_handler = SetCancelFlag;
    // Calls that wait return early; the next such signal has its default effect.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(number, &action, nullptr);
  }
}

const bool* CancelFlag() {
  return &cancel_flag;
}

bool IsCancelled() {
  return __atomic_load_n(&cancel_flag, __ATOMIC_RELAXED);
}

}  // namespace darokleim::cli

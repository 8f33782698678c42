#include <signal.h>
#include <unistd.h>

#include <cstdio>

#include "tools/phone/device/programs/programs.h"

namespace darokleim::phone {

// The phone's first process passes the wish on to the server, which switches the phone off and on; this program
// ends with the phone.
int RunReboot(const Words&) {
  constexpr pid_t kFirstProcess = 1;
  if (kill(kFirstProcess, SIGUSR1) != 0) {
    std::perror("reboot");
    return 1;
  }
  for (;;) pause();
}

}  // namespace darokleim::phone

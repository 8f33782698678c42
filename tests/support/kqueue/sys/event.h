// A stand-in for <sys/event.h> of macOS, with what this project uses of it, so that the macOS side of the channel can be run
// on Linux. It follows the manual page; what the kernel of macOS does beyond that it cannot show.
#ifndef DAROKLEIM_TESTS_SUPPORT_KQUEUE_SYS_EVENT_H
#define DAROKLEIM_TESTS_SUPPORT_KQUEUE_SYS_EVENT_H

// As the real one is: the warnings of this project are not for it.
#pragma GCC system_header

#include <stdint.h>
#include <time.h>

#define EVFILT_READ (-1)  // bytes to read, or the end of the file: as long as there are
#define EVFILT_PROC (-5)  // what a process does: its exit is reported once

#define EV_ADD 0x0001
#define EV_DELETE 0x0002
#define NOTE_EXIT 0x80000000U

struct kevent {
  uintptr_t ident;
  int16_t filter;
  uint16_t flags;
  uint32_t fflags;
  intptr_t data;
  void* udata;
};

#define EV_SET(event, ident_, filter_, flags_, fflags_, data_, udata_) \
  (*(event) = {ident_, static_cast<int16_t>(filter_), static_cast<uint16_t>(flags_), fflags_, data_, udata_})

int kqueue();
// As in macOS: a process that has ended, though it was not waited for, cannot be added (ESRCH); a descriptor that is closed
// leaves the queue. At most one process a queue; at most one change a call, and none together with a wait.
int kevent(int queue, const struct kevent* changes, int change_count, struct kevent* events, int event_count,
           const timespec* timeout);

#endif  // DAROKLEIM_TESTS_SUPPORT_KQUEUE_SYS_EVENT_H

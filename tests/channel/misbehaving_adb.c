// Takes the place of adb in the channel's tests and does what its words say, or, when MISBEHAVE is set in the
// environment, what the words there say. In order:
//
//   words          prints each of its own words between < and >
//   print:TEXT     on standard output; \s \n \r \0 \\ mean space, line feed, carriage return, NUL, backslash
//   error:TEXT     the same on standard error
//   flood:BYTES    prints so many bytes, 'x', in large pieces
//   byte:NUMBER    floods consist of this byte from now on
//   flood-for-ever
//   sleep:MS       does nothing for so long
//   exit:STATUS    ends
//   signal:NUMBER  ends by this signal
//   ignore:NUMBER  ignores this signal from now on
//   tidy-up:FILE   from now on makes FILE and ends when it gets SIGTERM
//   close          closes both outputs
//   server:FILE    leaves a server behind, in a session of its own, that holds everything it inherited; its
//                  process id goes to FILE
//   chatty-server:FILE  the same, and it never stops printing
//   descriptors    prints the numbers of its open descriptors
//   input          prints what it reads from standard input
//   signals        prints the numbers of the signals it was started with blocked or ignored
//   group          prints whether it leads a process group of its own
//   pid:FILE       writes its process id to FILE
#define _XOPEN_SOURCE 700
#define _DARWIN_C_SOURCE

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

static void Write(int fd, const char* data, size_t length) {
  while (length > 0) {
    const ssize_t count = write(fd, data, length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) exit(99);
    data += count;
    length -= (size_t)count;
  }
}

static void WriteNumber(int fd, long number) {
  char text[32];
  Write(fd, text, (size_t)snprintf(text, sizeof text, "%ld\n", number));
}

static void WriteEscaped(int fd, const char* text) {
  for (; *text != '\0'; ++text) {
    char c = *text;
    if (c == '\\' && text[1] != '\0') {
      ++text;
      c = *text == 's' ? ' ' : *text == 'n' ? '\n' : *text == 'r' ? '\r' : *text == '0' ? '\0' : *text;
    }
    Write(fd, &c, 1);
  }
}

static int flood_byte = 'x';

static void Flood(unsigned long long left) {
  static char piece[64 * 1024];
  memset(piece, flood_byte, sizeof piece);
  while (left > 0) {
    const size_t length = left < sizeof piece ? (size_t)left : sizeof piece;
    Write(STDOUT_FILENO, piece, length);
    left -= length;
  }
}

static void Sleep(long milliseconds) {
  struct timespec left = {milliseconds / 1000, milliseconds % 1000 * 1000000};
  while (nanosleep(&left, &left) != 0) {
  }
}

// The file appears whole: whoever waits for it never reads half a number.
static void WritePid(const char* file, long pid) {
  char unfinished[4096];
  snprintf(unfinished, sizeof unfinished, "%s.part", file);
  const int fd = open(unfinished, O_WRONLY | O_CREAT | O_TRUNC, 0644);
  WriteNumber(fd, pid);
  close(fd);
  rename(unfinished, file);
}

static void LeaveServer(const char* file, int chatty) {
  const pid_t pid = fork();
  if (pid != 0) {
    WritePid(file, pid);
    return;
  }
  setsid();
  if (chatty) {
    for (;;) Write(STDOUT_FILENO, "server\n", 7);
  }
  Sleep(60000);
  _exit(0);
}

static void PrintDescriptors(void) {
  for (int fd = 0; fd < 4096; ++fd) {
    if (fcntl(fd, F_GETFD) != -1) WriteNumber(STDOUT_FILENO, fd);
  }
}

static void PrintInput(void) {
  char piece[4096];
  ssize_t count = 0;
  while ((count = read(STDIN_FILENO, piece, sizeof piece)) > 0) Write(STDOUT_FILENO, piece, (size_t)count);
  Write(STDOUT_FILENO, count < 0 ? "error\n" : "end\n", count < 0 ? 6 : 4);
}

static void PrintSignals(void) {
  sigset_t blocked;
  sigprocmask(SIG_SETMASK, NULL, &blocked);
  for (int number = 1; number < 32; ++number) {
    struct sigaction action;
    if (sigaction(number, NULL, &action) != 0) continue;
    if (action.sa_handler == SIG_IGN || sigismember(&blocked, number)) WriteNumber(STDOUT_FILENO, number);
  }
}

static const char* ValueOf(const char* word, const char* name) {
  const size_t length = strlen(name);
  return strncmp(word, name, length) == 0 ? word + length : NULL;
}

static const char* tidied_up;

static void TidyUp(int number) {
  (void)number;
  const int fd = open(tidied_up, O_WRONLY | O_CREAT, 0644);
  _exit(fd < 0);
}

static void Do(const char* word, int argc, char** argv) {
  const char* value = NULL;
  if (strcmp(word, "words") == 0) {
    for (int i = 1; i < argc; ++i) printf("<%s>", argv[i]);
    fflush(stdout);
  } else if ((value = ValueOf(word, "print:"))) {
    WriteEscaped(STDOUT_FILENO, value);
  } else if ((value = ValueOf(word, "error:"))) {
    WriteEscaped(STDERR_FILENO, value);
  } else if ((value = ValueOf(word, "flood:"))) {
    Flood(strtoull(value, NULL, 10));
  } else if ((value = ValueOf(word, "byte:"))) {
    flood_byte = atoi(value);
  } else if (strcmp(word, "flood-for-ever") == 0) {
    for (;;) Flood(1 << 20);
  } else if ((value = ValueOf(word, "sleep:"))) {
    Sleep(atol(value));
  } else if ((value = ValueOf(word, "exit:"))) {
    _exit(atoi(value));
  } else if ((value = ValueOf(word, "signal:"))) {
    kill(getpid(), atoi(value));
  } else if ((value = ValueOf(word, "ignore:"))) {
    signal(atoi(value), SIG_IGN);
  } else if ((value = ValueOf(word, "tidy-up:"))) {
    tidied_up = value;
    signal(SIGTERM, TidyUp);
  } else if (strcmp(word, "close") == 0) {
    close(STDOUT_FILENO);
    close(STDERR_FILENO);
  } else if ((value = ValueOf(word, "server:"))) {
    LeaveServer(value, 0);
  } else if ((value = ValueOf(word, "chatty-server:"))) {
    LeaveServer(value, 1);
  } else if (strcmp(word, "descriptors") == 0) {
    PrintDescriptors();
  } else if (strcmp(word, "input") == 0) {
    PrintInput();
  } else if (strcmp(word, "signals") == 0) {
    PrintSignals();
  } else if (strcmp(word, "group") == 0) {
    WriteEscaped(STDOUT_FILENO, getpgrp() == getpid() ? "own" : "shared");
  } else if ((value = ValueOf(word, "pid:"))) {
    WritePid(value, getpid());
  }
}

int main(int argc, char** argv) {
  const char* const orders = getenv("MISBEHAVE");
  if (orders == NULL) {
    for (int i = 1; i < argc; ++i) Do(argv[i], argc, argv);
    return 0;
  }
  char* const words = strdup(orders);
  for (char* word = strtok(words, " "); word != NULL; word = strtok(NULL, " ")) Do(word, argc, argv);
  return 0;
}

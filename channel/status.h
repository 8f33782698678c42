// The status values of a command. Zero is success; no other value is also a result code of the SDK (0 to 47).
#ifndef DAROKLEIM_CHANNEL_STATUS_H
#define DAROKLEIM_CHANNEL_STATUS_H

namespace darokleim::channel {

enum Status : int {
  kDelivered = 0,

  kExitStatusBase = 1000,  // plus the exit status with which adb failed
  kSignalBase = 2000,      // plus the number of the signal that ended adb

  kNotInitialised = 3001,
  kCannotStart = 3002,  // adb is missing or cannot be executed
  kCancelled = 3003,
  kBadArgument = 3004,    // a null pointer where something is needed
  kTooMuchOutput = 3005,  // more than an int can count, with the zero byte after it
  kSystemRefused = 3006,  // the system refused a descriptor, a process, a thread or memory
  kConnectionBroken =
      3007,  // the connection to the phone broke in the middle of an answer; adb cannot report that
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_STATUS_H

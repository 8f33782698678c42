// What a command of the channel can come to. Zero is success; the values never meet the result codes that the
// SDK has of its own (0 to 47).
#ifndef DAROKLEIM_CHANNEL_STATUS_H
#define DAROKLEIM_CHANNEL_STATUS_H

namespace darokleim::channel {

enum Status : int {
  kDelivered = 0,

  kExitStatusBase = 1000,  // plus the exit status with which adb failed
  kSignalBase = 2000,      // plus the number of the signal that ended adb

  kNotInitialised = 3001,
  kCannotStart = 3002,  // adb is missing, or nothing that can be executed
  kCancelled = 3003,
  kBadArgument = 3004,    // a null pointer where something is needed
  kTooMuchOutput = 3005,  // more than an int can count, with the zero byte after it
  kSystemRefused = 3006,  // no descriptor, process, thread or memory to be had
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_STATUS_H

// The interface of the command channel: a library that runs the adb executable and returns what adb printed.
// This project's channel is in channel/; any library with these four symbols can replace it.
#ifndef DAROKLEIM_SRC_PLATFORM_COMMAND_CHANNEL_H
#define DAROKLEIM_SRC_PLATFORM_COMMAND_CHANNEL_H

#ifdef __cplusplus
extern "C" {
#else
#include <stdbool.h>
#endif

// Sets the adb executable to run and the directory for the channel's log. Called once, before the other functions.
// log_context is the pointer that the application passed to AdbSdkInit; the SDK does not use it itself. The SDK ignores
// the return value (in channel/: 0, or a status as below).
int InitAdbCommuncation2Server(const char* adb_path, const char* log_dir, const void* log_context);

// Runs adb once with an argument text (the words after "adb", quoted as for a shell) and waits for it to end.
// *out and *out_len must be null and 0 on entry. Afterwards *out is null (nothing to read) or a buffer of
// *out_len bytes, followed by a zero byte, with everything that adb printed on both streams, in order; it
// must be released with ReleaseAdbOutBuffer exactly once. Another thread may set *cancel (null: never) to end
// the command early. Returns 0 when adb ran and succeeded, otherwise a status of the channel, which is never
// a result code of the SDK (channel/README.md and darokleim.h list the statuses of channel/). Several threads may call
// it at once.
int ExecuteAdbCommandSynchronization(const char* args, const bool* cancel, char** out, int* out_len);

// Starts adb with an argument text and returns immediately: 0 when it was started, otherwise a status as above.
// on_output is a `void (*)(void* context, const char* data, int length)`, passed as its address (null: the
// output is discarded). A thread of the channel calls it with each piece of output; in the last call data is
// null and length is the final status. *cancel must stay valid until then, and so must args, unless the
// channel copies it, as channel/ does.
int ExecuteAdbCommandAnsynchronization(const char* args, const bool* cancel, void* context, void* on_output);

// Releases a buffer of ExecuteAdbCommandSynchronization; null is allowed.
void ReleaseAdbOutBuffer(char* out);

#ifdef __cplusplus
}
#endif

#endif  // DAROKLEIM_SRC_PLATFORM_COMMAND_CHANNEL_H

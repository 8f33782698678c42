// The command channel as the SDK sees it: a library that runs the adb executable and hands back what it
// printed. The one of this tree is in channel/; any library with these four symbols can replace it.
#ifndef DAROKLEIM_SRC_PLATFORM_COMMAND_CHANNEL_H
#define DAROKLEIM_SRC_PLATFORM_COMMAND_CHANNEL_H

#ifdef __cplusplus
extern "C" {
#else
#include <stdbool.h>
#endif

// Sets the adb executable to run and the directory of the channel's own log; called once, before the other functions.
// log_context is the pointer that the application passed to AdbSdkInit; the SDK does not use it itself. The SDK ignores
// the return value (in channel/: 0, or a status as below).
int InitAdbCommuncation2Server(const char* adb_path, const char* log_dir, const void* log_context);

// Runs adb once with an argument text (the words after "adb", quoted as for a shell) and waits for it to end.
// *out and *out_len must be null and 0 on entry. Afterwards *out is null (nothing to read) or a buffer of
// *out_len bytes, followed by a zero byte, with everything that adb printed on both streams, in order; it
// must be released with ReleaseAdbOutBuffer exactly once. Another thread may set *cancel (null: never) to end
// the command early. Returns 0 when adb ran and delivered, otherwise a status of the channel, which is never
// a result code of the SDK (those of channel/ are in its README.md and in darokleim.h). Any number of threads may call
// at once.
int ExecuteAdbCommandSynchronization(const char* args, const bool* cancel, char** out, int* out_len);

// Starts adb with an argument text and returns at once: 0 when it was started, otherwise a status as above.
// on_output is a `void (*)(void* context, const char* data, int length)`, passed as its address (null: the
// output is discarded), called on a thread of the channel with each piece of output; its last call has a null
// data and the final status in length. *cancel must stay valid until then, and so must args, unless the
// channel copies it (channel/ does).
int ExecuteAdbCommandAnsynchronization(const char* args, const bool* cancel, void* context, void* on_output);

// Releases a buffer of ExecuteAdbCommandSynchronization; null is allowed.
void ReleaseAdbOutBuffer(char* out);

#ifdef __cplusplus
}
#endif

#endif  // DAROKLEIM_SRC_PLATFORM_COMMAND_CHANNEL_H

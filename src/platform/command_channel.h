// The command channel as the SDK sees it: a library that runs the adb executable and hands back what it
// printed. Ours stands in platform/channel; any library with these four symbols can take its place.
#ifndef DAROKLEIM_SRC_PLATFORM_COMMAND_CHANNEL_H
#define DAROKLEIM_SRC_PLATFORM_COMMAND_CHANNEL_H

#ifdef __cplusplus
extern "C" {
#else
#include <stdbool.h>
#endif

// Tells the channel which adb executable to run and in which directory to keep its own log; before anything
// else, once. log_context is the pointer that the application gave to AdbSdkInit; the SDK does not look at it.
// The return value is not used by the SDK (ours: 0, or a status as below).
int InitAdbCommuncation2Server(const char* adb_path, const char* log_dir, const void* log_context);

// Runs adb once with an argument text (the words after "adb", quoted as for a shell) and waits for it to end.
// *out and *out_len must be null and 0 on entry. Afterwards *out is null (nothing to read) or a buffer of
// *out_len bytes, followed by a zero byte, with everything that adb printed on both streams, in order; it
// goes back through ReleaseAdbOutBuffer exactly once. Another thread may set *cancel (null: never) to end
// the command early. Returns 0 when adb ran and delivered, else a status of the channel's own, none of which is
// a result code of the SDK (ours are in platform/channel/README.md). Any number of threads may call at once.
int ExecuteAdbCommandSynchronization(const char* args, const bool* cancel, char** out, int* out_len);

// Starts adb with an argument text and returns at once: 0 when it was started, else a status as above.
// on_output is a `void (*)(void* context, const char* data, int length)`, passed as its address (null: the
// output is discarded), called on a thread of the channel with each piece of output; its last call has a null
// data and the final status in length. *cancel must stay valid until then. args need not with ours, but must
// with a channel that reads it later.
int ExecuteAdbCommandAnsynchronization(const char* args, const bool* cancel, void* context, void* on_output);

// Gives back a buffer of ExecuteAdbCommandSynchronization; null is allowed.
void ReleaseAdbOutBuffer(char* out);

#ifdef __cplusplus
}
#endif

#endif  // DAROKLEIM_SRC_PLATFORM_COMMAND_CHANNEL_H

/// @file
/// @brief The client: Android devices over an adb server, for applications of today.
///
/// libdarokleim_client speaks to the adb server itself; no adb process is started for a call. It is plain C (C11 and
/// C++17 include it), so that Swift, C++, Python and Objective-C bind to it. It knows nothing of the 71 functions of
/// darokleim.h and neither needs nor disturbs them: both libraries work in one process, and each without the other.
///
/// @code{.c}
/// #include <darokleim/client.h>
/// #include <stdio.h>
///
/// static bool print_entry(void* user, const dk_entry* entry) {
///   (void)user;
///   printf("%c %12llu %s\n", entry->type == DK_DIRECTORY ? 'd' : '-', (unsigned long long)entry->size, entry->name);
///   return true;  // false ends the listing
/// }
///
/// int main(void) {
///   dk_context* context = NULL;
///   dk_device* phone = NULL;
///   dk_error* error = NULL;
///   dk_call call = DK_CALL_INIT;
///   call.timeout_ms = 10000;
///   call.error = &error;
///
///   dk_code code = dk_context_new(NULL, &context, &call);
///   if (code == DK_OK) code = dk_device_open(context, "R58M123ABC", &phone, &call);
///   if (code == DK_OK) code = dk_list(phone, "/sdcard/DCIM", print_entry, NULL, &call);
///   if (code != DK_OK) fprintf(stderr, "%s\n", dk_error_message(error));
///
///   dk_error_free(error);
///   dk_device_free(phone);
///   dk_context_free(context);
///   return code != DK_OK;
/// }
/// @endcode
///
/// Build it with `cc example.c $(pkg-config --cflags --libs darokleim-client)`.
///
/// ## What holds everywhere
///
/// **Calls block** until they are done, have failed, were cancelled or ran out of time. Keep them off the thread that
/// draws the windows. Only dk_watch_start() and dk_log_start() return at once and call back later.
///
/// **Any thread** may make any call at any time, with the same context and the same device, many at once; a slow phone
/// holds nobody up but its own calls. Only freeing an object must be the last use of it.
///
/// **The last parameter** of every call is a ::dk_call, or null: a cancel token, a limit in time, where the error goes.
///
/// **Results** are a ::dk_code. Outputs (`T** out`) are set to null first, and stay null unless the call succeeds.
/// What the library hands out goes back to the function named with its type; null is allowed there. Structures that
/// a callback is given, and every text in them, are the library's and end with the callback.
///
/// **Callbacks** of a blocking call come on the caller's thread, before the call returns. Those of a watch or a log come on
/// one thread of their own, one at a time, and never after its stop has returned. A callback may make further calls
/// of this library, and may stop its own watch or log. No C++ exception may leave a callback.
///
/// **Paths and names are bytes**, zero-terminated, in no promised encoding, and no shell ever reads them: a path may hold
/// spaces, quotes, `$`, line breaks. A device's path must be absolute; one that is not gives ::DK_INVALID_ARGUMENT.
///
/// **Input structures** begin with their own size, so that later versions can add members: begin with the `…_INIT`
/// macro of the type. Structures that the library fills may get further members at their end.
///
/// **Memory** that runs out gives ::DK_OUT_OF_MEMORY. No exception leaves, nothing is printed, no file is written but
/// those asked for, no global state is kept, no signal is raised or handled.
///
/// **Old phones** (before Android 7) cannot say everything: each function says what. Where a phone cannot do a thing at
/// all the code is ::DK_UNSUPPORTED.
#ifndef DAROKLEIM_CLIENT_H
#define DAROKLEIM_CLIENT_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#error "darokleim_client runs on macOS and Linux"
#endif
#define DK_API __attribute__((visibility("default")))

/// The version of this header. It is that of the whole project.
#define DK_VERSION "2.0.109"
/// Changes when programs that were built before no longer work with the library.
#define DK_VERSION_MAJOR 2
/// Changes when something is added.
#define DK_VERSION_MINOR 0
/// Changes with every release.
#define DK_VERSION_PATCH 109
/// The version as one number, to compare: `#if DK_VERSION_NUMBER >= 2000109`.
#define DK_VERSION_NUMBER (DK_VERSION_MAJOR * 1000000 + DK_VERSION_MINOR * 1000 + DK_VERSION_PATCH)

#ifdef __cplusplus
extern "C" {
#endif

/// @defgroup errors Codes and errors
/// @{

/// What a call came to. Codes come from the protocol, from an errno of the phone or the host, or from an exit status;
/// never from words in an output, which a file name could hold. The values are fixed for ever.
typedef enum dk_code {
  DK_OK = 0,

  // The caller's own doing.
  DK_CANCELLED = 1,         ///< the token was set
  DK_TIMED_OUT = 2,         ///< the limit in time was reached
  DK_STOPPED = 3,           ///< a callback returned false
  DK_INVALID_ARGUMENT = 4,  ///< a null pointer, a relative path, a malformed address: nothing was sent
  DK_OUT_OF_MEMORY = 5,
  DK_SYSTEM_REFUSED = 6,  ///< this computer has no descriptor, socket or thread left; see dk_error_errno()

  // The way to the phone.
  DK_NO_SERVER = 10,        ///< no adb server answers, and none could be started
  DK_SERVER_PROTOCOL = 11,  ///< not an adb server, or its answer breaks the protocol
  DK_SERVER_REFUSED =
      12,             ///< the server said no, for a reason without a code of its own; see dk_error_words()
  DK_NO_DEVICE = 13,  ///< the server does not know this serial
  DK_SEVERAL_DEVICES = 14,        ///< no serial was given, and there are several devices
  DK_DEVICE_OFFLINE = 15,         ///< attached, but does not answer; also while it restarts
  DK_DEVICE_UNAUTHORIZED = 16,    ///< its user has not allowed debugging for this computer
  DK_DEVICE_NO_PERMISSIONS = 17,  ///< this computer's user may not open it (udev rules on Linux)
  DK_CONNECTION_LOST = 18,        ///< the server or the phone went away in the middle

  // Files, the phone's and this computer's: dk_error_on_host() says whose.
  DK_NOT_FOUND = 20,
  DK_ACCESS_DENIED = 21,
  DK_NOT_A_DIRECTORY = 22,
  DK_IS_A_DIRECTORY = 23,
  DK_EXISTS = 24,
  DK_NOT_EMPTY = 25,
  DK_NO_SPACE = 26,
  DK_READ_ONLY = 27,
  DK_LINK_LOOP = 28,
  DK_NAME_TOO_LONG = 29,
  DK_UNSAFE_NAME =
      30,  ///< a name from the phone that would leave the target folder, or meet another file there
  DK_FILE_ERROR = 31,  ///< any other errno; see dk_error_errno()
  DK_CHANGED = 32,     ///< the file changed while it was read

  // What the phone's programs answer.
  DK_COMMAND_FAILED = 40,     ///< an exit status other than 0; see dk_error_exit_status()
  DK_INSTALL_FAILED = 41,     ///< see dk_error_reason()
  DK_NO_PACKAGE = 42,         ///< no application of this name is installed
  DK_ANSWER_UNREADABLE = 43,  ///< the phone's program answered in a form that is not known
  DK_UNSUPPORTED = 44,        ///< this phone, or its server, cannot do that

  DK_ADDRESS_IN_USE = 50,  ///< a port mapping exists already

  DK_PARTLY_DONE = 60,  ///< some of several items failed; each was reported, the others are done
} dk_code;

/// More about a failure: of a call that failed, or of one file of several. The functions below also take null, which
/// is what a call that ran out of memory leaves: they then say so.
typedef struct dk_error dk_error;

DK_API dk_code dk_error_code(const dk_error* error);
/// One plain English sentence: what was tried, what went wrong, what to do. Never null; control bytes in names are
/// escaped, so that it may be shown as it is.
DK_API const char* dk_error_message(const dk_error* error);
/// The path that it is about, in its own bytes; null when it is about none.
DK_API const char* dk_error_path(const dk_error* error);
/// Why an application was not installed or removed, as Android names it: `INSTALL_FAILED_OLDER_SDK`; null otherwise.
DK_API const char* dk_error_reason(const dk_error* error);
/// What the server or the phone said, in its own words, at most 64 KiB; null when it said nothing.
DK_API const char* dk_error_words(const dk_error* error);
/// The errno, the phone's in Linux numbering or this computer's; 0 when there is none.
DK_API int dk_error_errno(const dk_error* error);
/// Whether the path, or the errno, is this computer's and not the phone's.
DK_API bool dk_error_on_host(const dk_error* error);
/// The exit status of the phone's program; -1 when there is none or the phone cannot say it.
DK_API int dk_error_exit_status(const dk_error* error);
DK_API void dk_error_free(dk_error* error);

/// The name of a code, "DK_NO_DEVICE"; "unknown" for a number that is not one.
DK_API const char* dk_code_name(dk_code code);

/// The version of the library that runs, which may be later than ::DK_VERSION of the header that a program was built with.
DK_API const char* dk_version(void);

/// @}
/// @defgroup calls What every call takes
/// @{

/// Ends calls from another thread.
typedef struct dk_cancel dk_cancel;

DK_API dk_code dk_cancel_new(dk_cancel** cancel);
/// Every call that holds this token, or is given it later, returns ::DK_CANCELLED at once. May be called from any thread, and
/// from a signal handler. Changes already made on the device are kept.
DK_API void dk_cancel_set(dk_cancel* cancel);
DK_API bool dk_cancel_is_set(const dk_cancel* cancel);
/// Makes the token usable again. No call may hold it.
DK_API void dk_cancel_reset(dk_cancel* cancel);
DK_API void dk_cancel_free(dk_cancel* cancel);

typedef struct dk_call {
  size_t size;         ///< sizeof(dk_call); DK_CALL_INIT sets it
  dk_cancel* cancel;   ///< [in] null: cannot be cancelled
  int64_t timeout_ms;  ///< [in] for the whole call, in milliseconds; 0: no limit
  /// [out] null: not wanted. Otherwise set to null, and on failure to an error that the caller frees with dk_error_free().
  dk_error** error;
} dk_call;
#define DK_CALL_INIT \
  { sizeof(dk_call), NULL, 0, NULL }

/// A block of bytes that the library allocated: `size` bytes and a zero byte after them, which `size` does not count.
typedef struct dk_bytes {
  char* data;
  size_t size;
} dk_bytes;
/// Frees the block and clears the structure.
DK_API void dk_bytes_free(dk_bytes* bytes);

/// @}
/// @defgroup context Context
/// @{

/// Where the adb server is, and who starts one. Several in a process do not know of each other.
typedef struct dk_context dk_context;

typedef struct dk_context_options {
  size_t size;
  /// `tcp:PORT`, `tcp:HOST:PORT`, `localfilesystem:PATH`. Null: as adb itself, from ADB_SERVER_SOCKET or
  /// ANDROID_ADB_SERVER_PORT in the environment, otherwise port 5037 of this computer.
  const char* server;
  /// The adb program that starts a server where none answers. Null: none is started, and ::DK_NO_SERVER is returned.
  const char* adb_path;
  /// Called with each request to the server and its outcome, from any thread; null: nothing is logged. Text that is
  /// typed on the phone is left out.
  void (*log)(void* user, const char* line);
  void* log_user;
} dk_context_options;
#define DK_CONTEXT_OPTIONS_INIT \
  { sizeof(dk_context_options), NULL, NULL, NULL, NULL }

/// Reads the environment and asks nobody: it also succeeds where no server runs. options may be null.
DK_API dk_code dk_context_new(const dk_context_options* options, dk_context** context, const dk_call* call);
/// Devices, watches and logs of the context must have been freed or stopped.
DK_API void dk_context_free(dk_context* context);
/// The version of the server's protocol, 41 for adb 29 to 36. Starts a server where the context may.
DK_API dk_code dk_server_version(dk_context* context, int* version, const dk_call* call);

/// @}
/// @defgroup devices Devices
/// @{

typedef enum dk_state {
  DK_STATE_UNKNOWN = 0,  ///< a word this version does not know: see state_text
  DK_STATE_READY = 1,    ///< "device"
  DK_STATE_OFFLINE = 2,
  DK_STATE_UNAUTHORIZED = 3,
  DK_STATE_AUTHORIZING = 4,
  DK_STATE_CONNECTING = 5,
  DK_STATE_NO_PERMISSIONS = 6,
  DK_STATE_BOOTLOADER = 7,
  DK_STATE_RECOVERY = 8,
  DK_STATE_RESCUE = 9,
  DK_STATE_SIDELOAD = 10,
  DK_STATE_DETACHED = 11,
  DK_STATE_HOST = 12,
} dk_state;

typedef enum dk_link {
  DK_LINK_UNKNOWN = 0,
  DK_LINK_USB = 1,
  DK_LINK_NETWORK = 2,
  DK_LINK_EMULATOR = 3
} dk_link;

typedef struct dk_device_info {
  const char* serial;
  dk_state state;
  const char* state_text;  ///< as the server words it
  dk_link link;
  const char* product;  ///< these four: empty when not known, as for a device that is not ready
  const char* model;
  const char* device;
  const char* usb_path;
  uint64_t transport_id;  ///< new each time the device is attached; 0 when not known
} dk_device_info;

/// Called for each device; returning false ends the call with ::DK_STOPPED.
typedef bool (*dk_on_device)(void* user, const dk_device_info* device);
/// All devices that the server knows, in every state, in its order.
DK_API dk_code dk_devices(dk_context* context, dk_on_device on_device, void* user, const dk_call* call);

/// One device, by its serial. Light: opening asks nobody, and the device may come and go meanwhile.
typedef struct dk_device dk_device;
/// serial: null takes the only one that is ready; ::DK_NO_DEVICE or ::DK_SEVERAL_DEVICES otherwise.
DK_API dk_code dk_device_open(dk_context* context, const char* serial, dk_device** device,
                              const dk_call* call);
DK_API const char* dk_device_serial(const dk_device* device);
DK_API void dk_device_free(dk_device* device);

DK_API dk_code dk_device_state(dk_device* device, dk_state* state, const dk_call* call);
/// Waits until the device is in this state; one that is absent is waited for, too. Set a limit in time.
DK_API dk_code dk_device_wait(dk_device* device, dk_state state, const dk_call* call);
/// mode: null for Android, otherwise `bootloader`, `recovery`, `sideload`, `sideload-auto-reboot`. Returns when the phone
/// has taken the order, not when it is back: dk_device_wait() with ::DK_STATE_OFFLINE, then ::DK_STATE_READY.
DK_API dk_code dk_device_reboot(dk_device* device, const char* mode, const dk_call* call);
/// Makes the server drop the device and look for it again; one that is unauthorized asks its user again.
DK_API dk_code dk_device_reconnect(dk_device* device, const dk_call* call);

/// Over the network: `HOST` or `HOST:PORT` (5555 when left out). Connecting twice is not an error.
DK_API dk_code dk_connect(dk_context* context, const char* address, const dk_call* call);
/// address: null disconnects all of the network.
DK_API dk_code dk_disconnect(dk_context* context, const char* address, const dk_call* call);
/// With the address and the six digits that the phone shows (Android 11 or later). ::DK_UNSUPPORTED with servers before 30.
DK_API dk_code dk_pair(dk_context* context, const char* address, const char* code, const dk_call* call);

typedef enum dk_change {
  DK_DEVICE_ADDED = 1,    ///< also for each one that is there when the watch begins
  DK_DEVICE_CHANGED = 2,  ///< its state or its facts
  DK_DEVICE_REMOVED = 3,  ///< the info is the last that was known
  DK_SERVER_LOST = 4,     ///< info is null; every device was reported removed before
  DK_SERVER_FOUND = 5,    ///< info is null; its devices follow as added. Also the first event of a watch
} dk_change;
typedef void (*dk_on_change)(void* user, dk_change change, const dk_device_info* info);
typedef struct dk_watch dk_watch;
/// Reports what is there, then each change as the server reports it, without polling. Outlives the server: when it ends, the
/// watch looks for one again (every 250 ms, and starts one where the context may) until it is stopped.
DK_API dk_code dk_watch_start(dk_context* context, dk_on_change on_change, void* user, dk_watch** watch,
                              const dk_call* call);
/// Stops and frees. No callback runs after it has returned, or, when called from within the callback, after that has.
DK_API void dk_watch_stop(dk_watch* watch);

/// @}
/// @defgroup files Files on the phone
/// @{

typedef enum dk_type {
  DK_UNKNOWN_TYPE = 0,
  DK_FILE = 1,
  DK_DIRECTORY = 2,
  DK_LINK = 3,
  DK_SPECIAL = 4
} dk_type;

typedef struct dk_entry {
  const char* path;  ///< absolute; of a walk: below the folder that was asked for, as it was spelled
  const char* name;  ///< the last part of path
  dk_type type;
  uint32_t mode;  ///< type and permissions as in Linux (S_IFMT | 07777)
  uint64_t size;  ///< bytes; of a link, of its text
  bool
      size_known;  ///< false for a file of 4 GiB or more in a folder of an old phone (dk_stat() asks its shell)
  int64_t mtime;   ///< seconds since 1970, UTC
  bool has_owner;  ///< uid, gid, device and inode are known: phones since Android 8
  uint32_t uid, gid;
  uint64_t device, inode;
  const char*
      link_target;  ///< of a link, where it was asked for (dk_stat() without following); otherwise null
} dk_entry;

/// false ends the call with ::DK_STOPPED.
typedef bool (*dk_on_entry)(void* user, const dk_entry* entry);

typedef enum dk_follow { DK_NO_FOLLOW = 0, DK_FOLLOW = 1 } dk_follow;
/// ::DK_NOT_FOUND for what is not there, and with ::DK_FOLLOW for a link to nowhere; ::DK_ACCESS_DENIED where the phone's shell
/// may not look (old phones are asked through their shell).
DK_API dk_code dk_stat(dk_device* device, const char* path, dk_follow follow, dk_entry** entry,
                       const dk_call* call);
DK_API void dk_entry_free(dk_entry* entry);

/// One folder: files, folders, links, the empty ones, every name but `.` and `..`, in the phone's order, while they arrive.
/// A path that is a link to a folder lists that folder. ::DK_NOT_FOUND, ::DK_NOT_A_DIRECTORY, ::DK_ACCESS_DENIED.
DK_API dk_code dk_list(dk_device* device, const char* folder, dk_on_entry on_entry, void* user,
                       const dk_call* call);

typedef struct dk_walk_options {
  size_t size;
  uint32_t max_depth;  ///< 1: the folder alone; 0: no limit
  uint32_t types;      ///< a set of (1u << dk_type); 0: all
  const char* const*
      suffixes;  ///< without the dot, compared without regard to ASCII case; null: all. Files only
  size_t suffix_count;
  uint64_t min_size, max_size;  ///< of files; max_size 0: no limit
  int64_t newer_than;           ///< mtime after this, seconds since 1970; 0: all
  /// Called for each folder below that cannot be read, after which the walk goes on and ends with ::DK_PARTLY_DONE. Null: the
  /// same, without a word. Returning false ends the walk.
  bool (*on_error)(void* user, const dk_error* error);
} dk_walk_options;
#define DK_WALK_OPTIONS_INIT \
  { sizeof(dk_walk_options), 0, 0, NULL, 0, 0, 0, 0, NULL }
/// Everything below a folder, folder after folder, each folder's entries in the phone's order, a folder before what is in it.
/// Links are reported and not followed. Paths longer than 4,096 bytes are not descended into (::DK_NAME_TOO_LONG).
DK_API dk_code dk_walk(dk_device* device, const char* folder, const dk_walk_options* options,
                       dk_on_entry on_entry, void* user, const dk_call* call);

/// Pieces of a file or an output; false ends the call with ::DK_STOPPED.
typedef bool (*dk_on_bytes)(void* user, const char* data, size_t size);
/// Reads length bytes from offset, fewer at the file's end; length 0: all there is. The beginning of a file costs no
/// more than itself, so that a thumbnail is read from the first 64 KiB of a photo; an offset needs the phone's shell.
DK_API dk_code dk_read(dk_device* device, const char* path, uint64_t offset, uint64_t length,
                       dk_on_bytes on_bytes, void* user, const dk_call* call);

/// parents: makes missing parents as well, and an existing folder is not an error.
DK_API dk_code dk_make_folder(dk_device* device, const char* path, bool parents, const dk_call* call);
/// A file, a link (not what it points to), an empty folder; recursive: a folder with all in it. What cannot be removed is
/// left, the rest is removed. Refuses `/` and mount points of storage volumes.
DK_API dk_code dk_remove(dk_device* device, const char* path, bool recursive, const dk_call* call);
/// Renames, or moves to another folder. An existing target gives ::DK_EXISTS unless replace; to is never taken for a
/// folder to move into.
DK_API dk_code dk_move(dk_device* device, const char* from, const char* to, bool replace,
                       const dk_call* call);
/// Copies a file, or a folder with all in it, on the phone, modes and times kept where the phone's storage keeps them. An
/// existing target gives ::DK_EXISTS unless replace; what was copied before a failure is removed.
DK_API dk_code dk_copy(dk_device* device, const char* from, const char* to, bool replace,
                       const dk_call* call);
/// mode: permissions as 0644. Storage volumes of phones ignore it without a word.
DK_API dk_code dk_chmod(dk_device* device, const char* path, uint32_t mode, const dk_call* call);

/// @}
/// @defgroup transfers Transfers
/// @{

/// What to do with a file that is at the target already.
typedef enum dk_existing {
  DK_FAIL_IF_EXISTS = 0,
  DK_REPLACE = 1,
  DK_SKIP_SAME = 2,  ///< skip what has the same size and modification time (in seconds), replace the rest
  DK_SKIP_EXISTING = 3,
} dk_existing;

typedef struct dk_item {
  const char* source;  ///< a file or a folder
  const char*
      target;  ///< the file or folder that it becomes; not a folder to put it in. Missing parents are made
} dk_item;

typedef struct dk_progress {
  const char* path;                  ///< the source file that is at work
  uint64_t file_done, file_size;     ///< bytes
  uint64_t bytes_done, bytes_total;  ///< of all items; skipped files count as done
  uint64_t files_done, files_total;
} dk_progress;

typedef struct dk_summary {
  uint64_t files_sent, files_skipped, files_failed;
  uint64_t bytes_sent;  ///< really sent, parts of failed files included
} dk_summary;

typedef struct dk_transfer_options {
  size_t size;
  dk_existing existing;
  bool keep_going;  ///< after a file's error: report it and go on; the call then ends with ::DK_PARTLY_DONE
  bool keep_times;  ///< DK_TRANSFER_OPTIONS_INIT sets it; ::DK_SKIP_SAME depends on it
  bool keep_modes;  ///< permissions, where the target can have them
  /// Before each block, on the caller's thread; false ends the call with ::DK_STOPPED. Null: none. Totals are known before
  /// the first byte.
  bool (*on_progress)(void* user, const dk_progress* progress);
  /// Of one file, with its path; false ends the call. Null: none.
  bool (*on_error)(void* user, const dk_error* error);
  void* user;
} dk_transfer_options;
#define DK_TRANSFER_OPTIONS_INIT \
  { sizeof(dk_transfer_options), DK_FAIL_IF_EXISTS, false, true, false, NULL, NULL, NULL }

/// Sends files and folders to the phone, or fetches them. Each file is whole before it gets its name: it is transferred under
/// a temporary name beside its target (or in a temporary folder there) and renamed, so that no failure, cancel or unplugging
/// harms an older file. What is done stays done; temporary files are removed, those of an earlier process that was killed, too.
///
/// In folders, links to files of the same tree are transferred as those files; all others are not followed (each is reported
/// with ::DK_UNSUPPORTED). Special files are left out. Names from the phone that would leave the target folder (`..`, with a
/// slash), or that meet another name there on a computer that ignores case, are refused one by one with ::DK_UNSAFE_NAME.
/// Links on this computer are not written through.
///
/// options and summary may be null.
DK_API dk_code dk_push(dk_device* device, const dk_item* items, size_t count,
                       const dk_transfer_options* options, dk_summary* summary, const dk_call* call);
DK_API dk_code dk_pull(dk_device* device, const dk_item* items, size_t count,
                       const dk_transfer_options* options, dk_summary* summary, const dk_call* call);

/// Hands out the next bytes of a file that is being sent: fills at most capacity bytes of buffer, returns how many, 0 at
/// the end, and a negative number to end the call with ::DK_STOPPED.
typedef int64_t (*dk_source)(void* user, char* buffer, size_t capacity);
/// Sends what the source gives as one file, mode as 0644, mtime in seconds since 1970 (0: now).
DK_API dk_code dk_write(dk_device* device, const char* path, uint32_t mode, int64_t mtime, bool replace,
                        dk_source source, void* user, const dk_call* call);

/// @}
/// @defgroup shell Commands on the phone
/// @{

typedef enum dk_stream { DK_STDOUT = 1, DK_STDERR = 2 } dk_stream;

typedef struct dk_run_options {
  size_t size;
  const char* input;  ///< for the command's standard input; null: it is empty. Not to phones before Android 7
  size_t input_size;
  /// Each piece as it comes; before Android 7 both streams come as ::DK_STDOUT. False ends the command. Null: collected only.
  bool (*on_output)(void* user, dk_stream stream, const char* data, size_t size);
  void* user;
  size_t most_collected;  ///< bytes kept of each stream for dk_output; 0: 1 MiB
} dk_run_options;
#define DK_RUN_OPTIONS_INIT \
  { sizeof(dk_run_options), NULL, 0, NULL, NULL, 0 }

typedef struct dk_output {
  dk_bytes out, err;  ///< empty when on_output took them
  bool cut;           ///< more came than was kept
  int exit_status;    ///< of the command; 128 and more: ended by a signal, as its shell counts
} dk_output;
/// Frees what is in it.
DK_API void dk_output_free(dk_output* output);

/// Runs a program of the phone with an argument list. The list is quoted by the library: no argument is read by a shell.
/// The call succeeds when the command ran, whatever its exit status, which is in the output (phones before Android 7 are
/// made to print it at the end, and it is taken off). ::DK_CONNECTION_LOST when the end is missing. options may be null.
DK_API dk_code dk_run(dk_device* device, const char* const* arguments, size_t count,
                      const dk_run_options* options, dk_output* output, const dk_call* call);
/// The same for a script, which the phone's shell reads. Quote what comes from elsewhere with dk_quote().
DK_API dk_code dk_run_script(dk_device* device, const char* script, const dk_run_options* options,
                             dk_output* output, const dk_call* call);
/// The text as one word for the phone's shell.
DK_API dk_code dk_quote(const char* text, dk_bytes* quoted);

/// @}
/// @defgroup apps Applications
/// @{

typedef struct dk_app {
  const char* package;
  const char* version_name;  ///< empty when not known
  int64_t version_code;      ///< -1 when not known
  bool system;               ///< came with the phone
  bool enabled;
  uint64_t size;  ///< bytes of its APKs; 0 unless asked for
  const char* const* apk_paths;
  size_t apk_count;
} dk_app;
typedef bool (*dk_on_app)(void* user, const dk_app* app);

typedef enum dk_app_set { DK_ALL_APPS = 0, DK_USER_APPS = 1, DK_SYSTEM_APPS = 2 } dk_app_set;
/// All applications, in a few commands however many there are. sizes: asks for the sizes of the APKs as well.
DK_API dk_code dk_apps(dk_device* device, dk_app_set set, bool sizes, dk_on_app on_app, void* user,
                       const dk_call* call);
/// ::DK_NO_PACKAGE when it is not installed.
DK_API dk_code dk_app_get(dk_device* device, const char* package, dk_app** app, const dk_call* call);
DK_API void dk_app_free(dk_app* app);

typedef struct dk_install_options {
  size_t size;
  bool replace;    ///< an installed version keeps its data; DK_INSTALL_OPTIONS_INIT sets it
  bool downgrade;  ///< also an older version
  bool grant;      ///< all permissions that it asks for
  bool test;       ///< also one that is marked as for tests only
  bool (*on_progress)(void* user, uint64_t bytes_done,
                      uint64_t bytes_total);  ///< false ends the call; null: none
  void* user;
} dk_install_options;
#define DK_INSTALL_OPTIONS_INIT \
  { sizeof(dk_install_options), true, false, false, false, NULL, NULL }
/// Installs one APK, or the several of one application together. They are streamed into the phone's package manager; a phone
/// before Android 7 gets them under a temporary name that nobody else uses, which is always removed.
/// ::DK_INSTALL_FAILED with the reason, for example `INSTALL_FAILED_UPDATE_INCOMPATIBLE`.
DK_API dk_code dk_app_install(dk_device* device, const char* const* apk_paths, size_t count,
                              const dk_install_options* options, const dk_call* call);
DK_API dk_code dk_app_uninstall(dk_device* device, const char* package, bool keep_data, const dk_call* call);
/// activity: null starts what the phone's launcher would.
DK_API dk_code dk_app_start(dk_device* device, const char* package, const char* activity,
                            const dk_call* call);
DK_API dk_code dk_app_stop(dk_device* device, const char* package, const dk_call* call);
/// Deletes its data.
DK_API dk_code dk_app_clear(dk_device* device, const char* package, const dk_call* call);

/// @}
/// @defgroup facts What a phone is
/// @{

typedef bool (*dk_on_property)(void* user, const char* name, const char* value);
/// All system properties, in one command.
DK_API dk_code dk_properties(dk_device* device, dk_on_property on_property, void* user, const dk_call* call);

typedef struct dk_battery {
  int level;  ///< percent; -1 when not known
  bool charging;
  double temperature;  ///< degrees Celsius
  int voltage_mv;      ///< millivolts; 0 when not known
} dk_battery;
DK_API dk_code dk_battery_get(dk_device* device, dk_battery* battery, const dk_call* call);

typedef struct dk_screen {
  int width, height;  ///< pixels
  int density;        ///< dots per inch
} dk_screen;
DK_API dk_code dk_screen_get(dk_device* device, dk_screen* screen, const dk_call* call);

typedef struct dk_memory {
  uint64_t total, available;  ///< bytes
} dk_memory;
DK_API dk_code dk_memory_get(dk_device* device, dk_memory* memory, const dk_call* call);

typedef struct dk_volume {
  const char* path;            ///< `/storage/emulated/0`, `/storage/1234-5678`
  bool internal;               ///< not a card or a USB stick
  uint64_t total, used, free;  ///< bytes
} dk_volume;
typedef bool (*dk_on_volume)(void* user, const dk_volume* volume);
DK_API dk_code dk_volumes(dk_device* device, dk_on_volume on_volume, void* user, const dk_call* call);

/// @}
/// @defgroup screen Screen and input
/// @{

/// A PNG of the screen.
DK_API dk_code dk_screenshot(dk_device* device, dk_bytes* png, const dk_call* call);
/// Types text into what has the focus. ASCII alone: phones do not take more (::DK_INVALID_ARGUMENT). Not in any log.
DK_API dk_code dk_type_text(dk_device* device, const char* text, const dk_call* call);
/// key: a number or a name of Android's KeyEvent, `KEYCODE_HOME`, `HOME` or `3`.
DK_API dk_code dk_press_key(dk_device* device, const char* key, const dk_call* call);
/// In pixels from the upper left.
DK_API dk_code dk_tap(dk_device* device, int x, int y, const dk_call* call);
DK_API dk_code dk_swipe(dk_device* device, int x1, int y1, int x2, int y2, int duration_ms,
                        const dk_call* call);

/// @}
/// @defgroup log The phone's log
/// @{

typedef struct dk_log_record {
  int64_t seconds;  ///< since 1970, UTC
  int32_t nanoseconds;
  char level;  ///< V D I W E F
  uint32_t process, thread;
  const char* tag;
  const char* text;  ///< may have several lines
} dk_log_record;

typedef struct dk_log_options {
  size_t size;
  const char* const* filters;  ///< as logcat takes them, `ActivityManager:I`, `*:S`; null: everything
  size_t filter_count;
  const char* buffers;  ///< `main,system,crash`; null: the phone's choice
  bool only_new;        ///< not what is in the buffer already
  bool stop_at_end;     ///< what is in the buffer, then the end
} dk_log_options;
#define DK_LOG_OPTIONS_INIT \
  { sizeof(dk_log_options), NULL, 0, NULL, false, false }

typedef struct dk_log dk_log;
typedef void (*dk_on_record)(void* user, const dk_log_record* record);
/// Once, last: why the log ended. ::DK_OK: as asked (dk_log_stop(), stop_at_end); error is null then.
typedef void (*dk_on_log_end)(void* user, dk_code code, const dk_error* error);
/// Returns once the phone has taken the order; records come on a thread of the log. ::DK_UNSUPPORTED before Android 5.
DK_API dk_code dk_log_start(dk_device* device, const dk_log_options* options, dk_on_record on_record,
                            dk_on_log_end on_end, void* user, dk_log** log, const dk_call* call);
/// Stops and frees; as dk_watch_stop().
DK_API void dk_log_stop(dk_log* log);
DK_API dk_code dk_log_clear(dk_device* device, const dk_call* call);

/// @}
/// @defgroup ports Ports
/// @{

/// Addresses are adb's: `tcp:8080`, `localabstract:NAME`, `localfilesystem:PATH`, `localreserved:NAME`, `jdwp:PID`.
typedef struct dk_mapping {
  const char* serial;  ///< of a reverse mapping: empty
  const char* from;    ///< where is listened: this computer for forward, the phone for reverse
  const char* to;
} dk_mapping;
typedef bool (*dk_on_mapping)(void* user, const dk_mapping* mapping);

/// Listens on this computer and connects to the phone. from `tcp:0`: the server takes a free port, which is written to port.
/// ::DK_ADDRESS_IN_USE for an address that has a mapping, unless replace. port may be null.
DK_API dk_code dk_forward_add(dk_device* device, const char* from, const char* to, bool replace, int* port,
                              const dk_call* call);
/// from: null removes all of this device.
DK_API dk_code dk_forward_remove(dk_device* device, const char* from, const dk_call* call);
DK_API dk_code dk_forward_list(dk_device* device, dk_on_mapping on_mapping, void* user, const dk_call* call);

/// Listens on the phone and connects to this computer. ::DK_UNSUPPORTED on phones before Android 5.
DK_API dk_code dk_reverse_add(dk_device* device, const char* from, const char* to, bool replace, int* port,
                              const dk_call* call);
DK_API dk_code dk_reverse_remove(dk_device* device, const char* from, const dk_call* call);
DK_API dk_code dk_reverse_list(dk_device* device, dk_on_mapping on_mapping, void* user, const dk_call* call);

/// @}

#ifdef __cplusplus
}
#endif

#endif  // DAROKLEIM_CLIENT_H

/// @file
/// @brief The client: Android devices over an adb server, for applications of today.
///
/// libdarokleim_client speaks to the adb server itself; no adb process is started for a call. It is plain C (C11 and
/// C++17 include it), so that Swift, C++, Python and Objective-C bind to it; darokleim/client.hpp has values and exceptions
/// for C++. It knows nothing of the 71 functions of darokleim.h and neither needs nor disturbs them: both libraries work in
/// one process, and each without the other.
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
/// draws the windows. Only dk_watch_start(), dk_log_start() and dk_shell_start() return early and call back later.
///
/// **Any thread** may make any call at any time, with the same context and the same device, many at once; a slow phone
/// holds nobody up but its own calls. Only freeing an object must be the last use of it.
///
/// **The last parameter** of nearly every call is a ::dk_call, or null: a cancel token, a limit in time, where the error
/// goes.
///
/// **Results** are a ::dk_code. Outputs (`T** out`) are set to null first, and stay null unless the call succeeds.
/// What the library hands out goes back to the function named with its type; null is allowed there. Structures that
/// a callback is given, and every text in them, are the library's and end with the callback.
///
/// **Codes of every call**: any call on a device may also return ::DK_CANCELLED, ::DK_TIMED_OUT, ::DK_OUT_OF_MEMORY,
/// ::DK_SYSTEM_REFUSED, ::DK_INVALID_ARGUMENT (a null pointer, a path that is not absolute), the codes of the way to the phone
/// (::DK_NO_SERVER to ::DK_CONNECTION_LOST), and, where a program of the phone does the work, ::DK_COMMAND_FAILED and
/// ::DK_ANSWER_UNREADABLE. Functions name the codes that mean something of their own. Show dk_error_message() for a code that
/// you do not act on.
///
/// **Callbacks** of a blocking call come on the caller's thread, before the call returns. Those of a watch, a log or a
/// shell session come on one thread of its own, one at a time, and never after its stop has returned. A callback may make
/// further calls of this library, and may stop what it belongs to. No C++ exception may leave a callback.
///
/// **After fork()** objects belong to the process that made them. A child may make a context and all else anew, whatever threads of
/// its parent were doing; what it has inherited it neither uses nor frees. Stopping an inherited watch, log or shell session, and
/// setting an inherited token, does nothing there. All descriptors of the library are closed in a program that the child executes.
///
/// **Paths and names are bytes**, zero-terminated, in no promised encoding, and no shell ever reads them: a path may hold
/// spaces, quotes, `$`, line breaks. A device's path must be absolute and have at most 4,095 bytes (::DK_NAME_TOO_LONG); slashes
/// at its end are ignored.
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
/// What the library exports.
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

/// @defgroup client_errors Client: codes and errors
/// A code to act on, a sentence to show, and what else is known.
///
/// @code{.c}
/// #include <darokleim/client.h>
/// #include <stdio.h>
///
/// static void show(const dk_error* error) {
///   fprintf(stderr, "%s\n", dk_error_message(error));
///   switch (dk_error_code(error)) {
///     case DK_DEVICE_UNAUTHORIZED:  // ask the user to look at the phone
///       break;
///     case DK_NO_SPACE:  // whose? dk_error_on_host()
///       break;
///     case DK_INSTALL_FAILED:
///       if (dk_error_reason(error) != NULL) fprintf(stderr, "Android says %s.\n", dk_error_reason(error));
///       break;
///     default:
///       break;
///   }
/// }
/// @endcode
/// @{

/// What a call came to. Codes come from the protocol, from an errno of the phone or the host, or from an exit status;
/// never from words in an output, which a file name could hold. The values are fixed for ever.
typedef enum dk_code {
  DK_OK = 0,  ///< done

  // The caller's own doing.
  DK_CANCELLED = 1,         ///< the token was set
  DK_TIMED_OUT = 2,         ///< the limit in time was reached
  DK_STOPPED = 3,           ///< a callback returned false
  DK_INVALID_ARGUMENT = 4,  ///< a null pointer, a relative path, a malformed address: nothing was sent
  DK_OUT_OF_MEMORY = 5,     ///< of this computer; there is no error object then
  DK_SYSTEM_REFUSED = 6,    ///< this computer has no descriptor, socket or thread left; see dk_error_errno()

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
  DK_NOT_FOUND = 20,        ///< also a link to nowhere, where it is followed
  DK_ACCESS_DENIED = 21,    ///< EACCES or EPERM
  DK_NOT_A_DIRECTORY = 22,  ///< ENOTDIR
  DK_IS_A_DIRECTORY = 23,   ///< EISDIR, or a folder where a file is to be
  DK_EXISTS = 24,           ///< EEXIST, and nothing was replaced
  DK_NOT_EMPTY = 25,        ///< ENOTEMPTY
  DK_NO_SPACE = 26,         ///< ENOSPC or EDQUOT
  DK_READ_ONLY = 27,        ///< EROFS
  DK_LINK_LOOP = 28,        ///< ELOOP
  DK_NAME_TOO_LONG = 29,    ///< ENAMETOOLONG, or longer than adb carries
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
/// is what a call that ran out of memory leaves: they then say so. The texts are the error's and end with it.
typedef struct dk_error dk_error;

/// @param[in] error The error, or null.
/// @return The code that the call returned, or of one file, its own.
DK_API dk_code dk_error_code(const dk_error* error);
/// One plain English sentence: what was tried, what went wrong, what to do. Control bytes in names are escaped, so that it
/// may be shown as it is.
/// @param[in] error The error, or null.
/// @return The sentence, never null.
DK_API const char* dk_error_message(const dk_error* error);
/// @param[in] error The error, or null.
/// @return The path that it is about, in its own bytes; null when it is about none.
DK_API const char* dk_error_path(const dk_error* error);
/// @param[in] error The error, or null.
/// @return Why an application was not installed or removed, as Android names it: `INSTALL_FAILED_OLDER_SDK`; null otherwise.
DK_API const char* dk_error_reason(const dk_error* error);
/// @param[in] error The error, or null.
/// @return What the server or the phone said, in its own words, at most 64 KiB; null when it said nothing.
DK_API const char* dk_error_words(const dk_error* error);
/// @param[in] error The error, or null.
/// @return The errno, the phone's in Linux numbering or this computer's (see dk_error_on_host()); 0 when there is none.
DK_API int dk_error_errno(const dk_error* error);
/// @param[in] error The error, or null.
/// @return Whether the path, or the errno, is this computer's and not the phone's.
DK_API bool dk_error_on_host(const dk_error* error);
/// @param[in] error The error, or null.
/// @return The exit status of the phone's program; -1 when there is none or the phone cannot say it.
DK_API int dk_error_exit_status(const dk_error* error);
/// @param[in] error The error, which must not be used any more; null is ignored.
DK_API void dk_error_free(dk_error* error);

/// @param[in] code Any number.
/// @return The name of a code, `DK_NO_DEVICE`; `unknown` for a number that is not one. It lives as long as the program.
DK_API const char* dk_code_name(dk_code code);

/// @return The version of the library that runs, which may be later than #DK_VERSION of the header that a program was built
/// with. It lives as long as the program.
DK_API const char* dk_version(void);

/// @}
/// @defgroup client_calls Client: what every call takes
/// A limit in time, a way to cancel, a place for the error.
///
/// @code{.c}
/// #include <darokleim/client.h>
///
/// // Another thread, or a signal handler, ends it with dk_cancel_set(cancel).
/// static dk_code restart(dk_device* phone, dk_cancel* cancel, dk_error** error) {
///   dk_call call = DK_CALL_INIT;
///   call.cancel = cancel;
///   call.timeout_ms = 2 * 60 * 1000;
///   call.error = error;
///   dk_code code = dk_device_reboot(phone, NULL, &call);
///   if (code == DK_OK) code = dk_device_wait(phone, DK_STATE_OFFLINE, &call);
///   if (code == DK_OK) code = dk_device_wait(phone, DK_STATE_READY, &call);
///   return code;  // DK_CANCELLED, DK_TIMED_OUT …
/// }
/// @endcode
/// @{

/// Ends calls from another thread.
typedef struct dk_cancel dk_cancel;

/// Makes a token that is not set.
/// @param[out] cancel The token, to free with dk_cancel_free(); null on failure.
/// @retval DK_OK              There is a token.
/// @retval DK_SYSTEM_REFUSED  This computer has no descriptors left, which a token needs.
/// @return Otherwise ::DK_OUT_OF_MEMORY or ::DK_INVALID_ARGUMENT.
DK_API dk_code dk_cancel_new(dk_cancel** cancel);
/// Every call that holds this token, or is given it later, returns ::DK_CANCELLED at once. May be called from any thread, and
/// from a signal handler. Changes already made on the device are kept.
/// @param[in] cancel The token; null is ignored.
DK_API void dk_cancel_set(dk_cancel* cancel);
/// @param[in] cancel The token, or null.
/// @return Whether it was set.
DK_API bool dk_cancel_is_set(const dk_cancel* cancel);
/// Makes the token usable again.
/// @param[in] cancel The token, which no call may hold; null is ignored.
DK_API void dk_cancel_reset(dk_cancel* cancel);
/// @param[in] cancel The token, which no call may hold; null is ignored.
DK_API void dk_cancel_free(dk_cancel* cancel);

/// What a call takes last. One structure may serve many calls, one after the other; calls at the same time need one each, or
/// no error.
typedef struct dk_call {
  size_t size;         ///< sizeof(dk_call); DK_CALL_INIT sets it
  dk_cancel* cancel;   ///< [in] null: cannot be cancelled
  int64_t timeout_ms;  ///< [in] for the whole call, in milliseconds; 0: no limit
  /// [out] null: not wanted. Otherwise set to null, whatever it was, and on failure to an error that the caller frees with
  /// dk_error_free().
  dk_error** error;
} dk_call;
/// No token, no limit, no error.
#define DK_CALL_INIT \
  { sizeof(dk_call), NULL, 0, NULL }

/// A block of bytes that the library allocated: `size` bytes and a zero byte after them, which `size` does not count.
typedef struct dk_bytes {
  char* data;   ///< null when there is nothing
  size_t size;  ///< bytes
} dk_bytes;
/// Frees the block and clears the structure.
/// @param[in,out] bytes The structure; null is ignored.
DK_API void dk_bytes_free(dk_bytes* bytes);

/// @}
/// @defgroup client_context Client: context
/// Where the adb server is. Most programs need one context, made at the start and freed at the end.
///
/// @code{.c}
/// #include <darokleim/client.h>
/// #include <stdio.h>
///
/// static void log_line(void* user, const char* line) { fprintf(user, "%s\n", line); }
///
/// static dk_code open_context(const char* adb, dk_context** context, const dk_call* call) {
///   dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
///   options.adb_path = adb;  // starts a server when none runs
///   options.log = log_line;
///   options.log_user = stderr;
///   return dk_context_new(&options, context, call);
/// }
/// @endcode
/// @{

/// Where the adb server is, and who starts one. Several in a process do not know of each other.
typedef struct dk_context dk_context;

/// How a context is made.
typedef struct dk_context_options {
  size_t size;  ///< sizeof(dk_context_options); DK_CONTEXT_OPTIONS_INIT sets it
  /// [in] `tcp:PORT`, `tcp:HOST:PORT`, `localfilesystem:PATH`; copied. Null: as adb itself, from ADB_SERVER_SOCKET or
  /// ANDROID_ADB_SERVER_PORT in the environment, otherwise port 5037 of this computer.
  const char* server;
  /// [in] The adb program that starts a server where none answers; copied. Null: none is started, and ::DK_NO_SERVER is
  /// returned.
  const char* adb_path;
  /// [in] Called with each request to the server and its outcome, from any thread, perhaps several at once; null: nothing is
  /// logged. Text that is typed on the phone is left out.
  void (*log)(void* user, const char* line);
  void* log_user;  ///< [in] passed to log
} dk_context_options;
/// The server that adb itself would use; none is started.
#define DK_CONTEXT_OPTIONS_INIT \
  { sizeof(dk_context_options), NULL, NULL, NULL, NULL }

/// Reads the environment and asks nobody: it also succeeds where no server runs.
/// @param[in]  options May be null, which is #DK_CONTEXT_OPTIONS_INIT.
/// @param[out] context The context, to free with dk_context_free(); null on failure.
/// @param[in]  call    Only its error is used. May be null.
/// @retval DK_OK                There is a context.
/// @retval DK_INVALID_ARGUMENT  The server's address, perhaps in the environment, is not one that adb knows.
/// @return Otherwise ::DK_OUT_OF_MEMORY.
DK_API dk_code dk_context_new(const dk_context_options* options, dk_context** context, const dk_call* call);
/// @param[in] context Devices, watches and logs of it must have been freed or stopped. Null is ignored.
DK_API void dk_context_free(dk_context* context);
/// Asks whether a server runs, and for its version. Starts one where the context may.
/// @param[in]  context The context.
/// @param[out] version The version of the server's protocol, 41 for adb 29 to 36; unchanged on failure.
/// @param[in]  call    See ::dk_call; may be null.
/// @retval DK_OK         A server answers.
/// @retval DK_NO_SERVER  None does, and the context may not start one or could not.
/// @return Otherwise a code of every call.
DK_API dk_code dk_server_version(dk_context* context, int* version, const dk_call* call);
/// Ends the server, for every program of the user: port mappings, streams and running commands end. Starts none.
/// @param[in] context The context; another call of it may start a server again, where it may.
/// @param[in] call    See ::dk_call; may be null.
/// @retval DK_OK         It has ended.
/// @retval DK_NO_SERVER  None ran.
/// @return Otherwise a code of every call.
DK_API dk_code dk_server_stop(dk_context* context, const dk_call* call);

/// @}
/// @defgroup client_devices Client: devices
/// Which devices there are, when that changes, and one device to work with.
///
/// @code{.c}
/// #include <darokleim/client.h>
/// #include <stdio.h>
///
/// // On a thread of the watch.
/// static void on_change(void* user, dk_change change, const dk_device_info* info) {
///   (void)user;
///   if (change == DK_DEVICE_ADDED) printf("%s is there: %s\n", info->serial, info->state_text);
///   if (change == DK_DEVICE_REMOVED) printf("%s is gone\n", info->serial);
/// }
///
/// static dk_code watch(dk_context* context, dk_watch** watch, const dk_call* call) {
///   return dk_watch_start(context, on_change, NULL, watch, call);  // until dk_watch_stop(*watch)
/// }
/// @endcode
/// @{

/// The state of a device as its server sees it. Only ::DK_STATE_READY takes commands, and, in part, ::DK_STATE_RECOVERY.
typedef enum dk_state {
  DK_STATE_UNKNOWN = 0,         ///< a word this version does not know: see dk_device_info::state_text
  DK_STATE_READY = 1,           ///< "device": usable
  DK_STATE_OFFLINE = 2,         ///< attached, but does not answer
  DK_STATE_UNAUTHORIZED = 3,    ///< its user has not allowed debugging for this computer
  DK_STATE_AUTHORIZING = 4,     ///< its user is being asked, or its keys are compared
  DK_STATE_CONNECTING = 5,      ///< for a moment after it was attached
  DK_STATE_NO_PERMISSIONS = 6,  ///< this computer's user may not open it (udev rules on Linux)
  DK_STATE_BOOTLOADER = 7,      ///< in its bootloader
  DK_STATE_RECOVERY = 8,        ///< in its recovery system
  DK_STATE_RESCUE = 9,          ///< in the rescue party of its recovery system
  DK_STATE_SIDELOAD = 10,       ///< waits for a system update
  DK_STATE_DETACHED = 11,       ///< given up by the server with `adb detach`
  DK_STATE_HOST = 12,           ///< another adb server
} dk_state;

/// How a device is attached.
typedef enum dk_link {
  DK_LINK_UNKNOWN = 0,  ///< the server does not say it
  DK_LINK_USB = 1,      ///< by a cable
  DK_LINK_NETWORK = 2,  ///< by dk_connect(), or found on the network
  DK_LINK_EMULATOR = 3  ///< an emulator of this computer
} dk_link;

/// A device as the server knows it. Texts are never null.
typedef struct dk_device_info {
  const char* serial;      ///< the name to open it by
  dk_state state;          ///< whether it is usable
  const char* state_text;  ///< as the server words it
  dk_link link;            ///< how it is attached
  const char* product;     ///< `ro.product.name`; empty when not known, as for a device that is not ready
  const char* model;     ///< `ro.product.model` with `_` for all but letters and digits; empty when not known
  const char* device;    ///< `ro.product.device`; empty when not known
  const char* usb_path;  ///< of the socket, `usb:1-2`; empty when not known
  uint64_t transport_id;  ///< new each time the device is attached; 0 when not known
} dk_device_info;

/// Called for each device; returning false ends the call with ::DK_STOPPED.
typedef bool (*dk_on_device)(void* user, const dk_device_info* device);
/// All devices that the server knows, in every state, in its order.
/// @param[in] context   The context.
/// @param[in] on_device Called for each, before the call returns.
/// @param[in] user      Passed to @p on_device.
/// @param[in] call      See ::dk_call; may be null.
/// @retval DK_OK         Every device was reported; there may be none.
/// @retval DK_NO_SERVER  No adb server runs.
/// @retval DK_STOPPED    @p on_device returned false.
/// @return Otherwise a code of every call.
DK_API dk_code dk_devices(dk_context* context, dk_on_device on_device, void* user, const dk_call* call);

/// One device, by its serial. Light: opening asks nobody, and the device may come and go meanwhile.
typedef struct dk_device dk_device;
/// @param[in]  context The context, which must outlive the device.
/// @param[in]  serial  Copied. Null takes the only device that is ready; the server is asked for that alone.
/// @param[out] device  The device, to free with dk_device_free(); null on failure.
/// @param[in]  call    See ::dk_call; may be null.
/// @retval DK_OK               It is open. With a serial it need not be attached.
/// @retval DK_NO_DEVICE        Without a serial: none is ready.
/// @retval DK_SEVERAL_DEVICES  Without a serial: several are ready.
/// @return Otherwise a code of every call.
DK_API dk_code dk_device_open(dk_context* context, const char* serial, dk_device** device,
                              const dk_call* call);
/// @param[in] device The device, or null.
/// @return Its serial, which lives as long as the device; null for null.
DK_API const char* dk_device_serial(const dk_device* device);
/// @param[in] device No call, and no log that was started with it, may use it any more. Null is ignored.
DK_API void dk_device_free(dk_device* device);

/// Asks the server for the state of the device.
/// @param[in]  device The device.
/// @param[out] state  The state; unchanged on failure.
/// @param[in]  call   See ::dk_call; may be null.
/// @retval DK_OK         The state.
/// @retval DK_NO_DEVICE  It is not attached.
/// @return Otherwise a code of every call. Of a device that is not ready the server may give a reason instead of the state:
/// ::DK_DEVICE_UNAUTHORIZED for example.
DK_API dk_code dk_device_state(dk_device* device, dk_state* state, const dk_call* call);
/// Waits until the device is in this state; one that is absent is waited for, too.
/// @param[in] device The device.
/// @param[in] state  Any state but ::DK_STATE_UNKNOWN.
/// @param[in] call   Set a limit in time or a token.
/// @retval DK_OK         It is in this state, now or already.
/// @retval DK_TIMED_OUT  It was not, all the time.
/// @retval DK_CONNECTION_LOST  The server ended.
/// @return Otherwise a code of every call.
DK_API dk_code dk_device_wait(dk_device* device, dk_state state, const dk_call* call);
/// Restarts the phone. Returns when the phone has taken the order, not when it is back: dk_device_wait() with
/// ::DK_STATE_OFFLINE, then ::DK_STATE_READY.
/// @param[in] device The device.
/// @param[in] mode   Null for Android, otherwise `bootloader`, `recovery`, `sideload`, `sideload-auto-reboot`.
/// @param[in] call   See ::dk_call; may be null.
/// @retval DK_OK                The phone goes down.
/// @retval DK_INVALID_ARGUMENT  Another mode.
/// @return Otherwise a code of every call.
DK_API dk_code dk_device_reboot(dk_device* device, const char* mode, const dk_call* call);
/// Makes the server drop the device and look for it again; one that is unauthorized asks its user again.
/// @param[in] device The device, in any state.
/// @param[in] call   See ::dk_call; may be null.
/// @retval DK_OK         The server does so now; dk_device_wait() for it.
/// @retval DK_NO_DEVICE  It is not attached.
/// @return Otherwise a code of every call.
DK_API dk_code dk_device_reconnect(dk_device* device, const dk_call* call);

/// Attaches a device over the network. Connecting twice is not an error.
/// @param[in] context The context.
/// @param[in] address `HOST` or `HOST:PORT`, 5555 when left out. It is the device's serial then.
/// @param[in] call    Set a limit in time: an address that nobody answers takes the server long.
/// @retval DK_OK              It is attached; its user may still have to allow debugging.
/// @retval DK_SERVER_REFUSED  It cannot be reached; dk_error_words() says why.
/// @return Otherwise a code of every call.
DK_API dk_code dk_connect(dk_context* context, const char* address, const dk_call* call);
/// Detaches a device of the network.
/// @param[in] context The context.
/// @param[in] address As for dk_connect(); null detaches all of the network.
/// @param[in] call    See ::dk_call; may be null.
/// @retval DK_OK              It is detached.
/// @retval DK_SERVER_REFUSED  No such device is attached.
/// @return Otherwise a code of every call.
DK_API dk_code dk_disconnect(dk_context* context, const char* address, const dk_call* call);
/// Makes this computer known to a device of the network, once for all; then dk_connect() to its other port. Android 11 or
/// later, in the developer options under wireless debugging.
/// @param[in] context The context.
/// @param[in] address Address and port that the phone shows for pairing.
/// @param[in] code    The six digits that it shows.
/// @param[in] call    See ::dk_call; may be null.
/// @retval DK_OK              They are paired.
/// @retval DK_SERVER_REFUSED  Wrong code, or nobody answers; dk_error_words() says which.
/// @retval DK_UNSUPPORTED     The server is of adb 29 or before.
/// @return Otherwise a code of every call.
DK_API dk_code dk_pair(dk_context* context, const char* address, const char* code, const dk_call* call);

/// What a watch reports.
typedef enum dk_change {
  DK_DEVICE_ADDED = 1,    ///< also for each one that is there when the watch begins
  DK_DEVICE_CHANGED = 2,  ///< its state or its facts
  DK_DEVICE_REMOVED = 3,  ///< the info is the last that was known
  DK_SERVER_LOST = 4,     ///< info is null; every device was reported removed before
  DK_SERVER_FOUND = 5,    ///< info is null; its devices follow as added. Also the first event of a watch
} dk_change;
/// On the watch's thread.
typedef void (*dk_on_change)(void* user, dk_change change, const dk_device_info* info);
/// A watch that runs.
typedef struct dk_watch dk_watch;
/// Reports what is there, then each change as the server reports it, without polling. Outlives the server: when it ends, the
/// watch looks for one again (every 250 ms, and starts one where the context may) until it is stopped. A device that goes and
/// comes back between two reports of the server is removed and added, because its transport is another.
/// @param[in]  context   The context, which must outlive the watch.
/// @param[in]  on_change Called on the watch's thread, one call at a time. A slow one delays the next, and loses none.
/// @param[in]  user      Passed to @p on_change; must live until the watch has stopped.
/// @param[out] watch     The watch, to stop with dk_watch_stop(); null on failure.
/// @param[in]  call      Only its error is used. May be null.
/// @retval DK_OK              It runs, whether or not there is a server.
/// @retval DK_SYSTEM_REFUSED  This computer has no thread or descriptor left.
/// @return Otherwise ::DK_INVALID_ARGUMENT or ::DK_OUT_OF_MEMORY.
DK_API dk_code dk_watch_start(dk_context* context, dk_on_change on_change, void* user, dk_watch** watch,
                              const dk_call* call);
/// Stops and frees. No callback runs after it has returned, or, when called from within the callback, after that has.
/// @param[in] watch The watch, which must not be used any more; null is ignored.
DK_API void dk_watch_stop(dk_watch* watch);

/// @}
/// @defgroup client_files Client: files on the phone
/// What is there, what is in it, and changes of it.
///
/// Old phones (before Android 7) are asked through their shell for what their protocol cannot say: why a file cannot be looked
/// at, sizes of 4 GiB and more, where a link leads. Each of these costs a command.
///
/// @code{.c}
/// #include <darokleim/client.h>
/// #include <stdio.h>
///
/// static bool print_photo(void* user, const dk_entry* entry) {
///   (void)user;
///   printf("%s\n", entry->path);
///   return true;
/// }
///
/// // All photos below a folder that are larger than 1 MB.
/// static dk_code print_photos(dk_device* phone, const dk_call* call) {
///   static const char* const suffixes[] = {"jpg", "jpeg", "heic"};
///   dk_walk_options options = DK_WALK_OPTIONS_INIT;
///   options.suffixes = suffixes;
///   options.suffix_count = sizeof suffixes / sizeof suffixes[0];
///   options.min_size = 1000 * 1000;
///   const dk_code code = dk_walk(phone, "/sdcard/DCIM", &options, print_photo, NULL, call);
///   return code == DK_PARTLY_DONE ? DK_OK : code;  // folders that cannot be read are left out
/// }
/// @endcode
/// @{

/// What kind of file it is.
typedef enum dk_type {
  DK_UNKNOWN_TYPE = 0,  ///< the phone does not say it
  DK_FILE = 1,          ///< a regular file
  DK_DIRECTORY = 2,     ///< a folder
  DK_LINK = 3,          ///< a symbolic link
  DK_SPECIAL = 4        ///< a device, a pipe, a socket
} dk_type;

/// A file of the phone.
typedef struct dk_entry {
  const char* path;  ///< absolute; of a listing: below the folder that was asked for, as it was spelled
  const char* name;  ///< the last part of path
  dk_type type;      ///< what it is
  uint32_t mode;     ///< type and permissions as in Linux (S_IFMT | 07777)
  uint64_t size;     ///< bytes; of a link, of its text
  /// False for a file of 4 GiB or more of which the phone only says the lower 32 bits: in listings before Android 11, for
  /// dk_stat() before Android 8.
  bool size_known;
  int64_t mtime;    ///< seconds since 1970, UTC; on the same phones modulo 2^32
  bool has_owner;   ///< uid, gid, device and inode are known: not on the same phones
  uint32_t uid;     ///< the owner, as Android numbers users; 2000 is its shell
  uint32_t gid;     ///< the group
  uint64_t device;  ///< the number of the file system
  uint64_t inode;   ///< two entries with the same device and inode are the same file
  const char*
      link_target;  ///< of a link, where it was asked for (dk_stat() without following); otherwise null
} dk_entry;

/// Called for each entry; false ends the call with ::DK_STOPPED.
typedef bool (*dk_on_entry)(void* user, const dk_entry* entry);

/// Whether a link itself is meant, or what it points to.
typedef enum dk_follow {
  DK_NO_FOLLOW = 0,  ///< the link
  DK_FOLLOW = 1      ///< what it points to
} dk_follow;
/// Looks at one file.
/// @param[in]  device The device.
/// @param[in]  path   Absolute path on the phone.
/// @param[in]  follow Whether a link at the end of the path is followed.
/// @param[out] entry  What it is, to free with dk_entry_free(); null on failure.
/// @param[in]  call   See ::dk_call; may be null.
/// @retval DK_OK             It is there.
/// @retval DK_NOT_FOUND      It is not; with ::DK_FOLLOW also a link to nowhere.
/// @retval DK_ACCESS_DENIED  The phone's shell may not look at it.
/// @retval DK_NOT_A_DIRECTORY  A part of the path is a file.
/// @retval DK_LINK_LOOP      Links that lead to each other.
/// @return Otherwise a code of every call, or of another errno of the phone.
DK_API dk_code dk_stat(dk_device* device, const char* path, dk_follow follow, dk_entry** entry,
                       const dk_call* call);
/// @param[in] entry An entry of dk_stat(), never one that a callback was given; null is ignored.
DK_API void dk_entry_free(dk_entry* entry);

/// One folder: files, folders, links, the empty ones, every name but that of the folder itself and of its parent, in the phone's
/// order, while they arrive.
/// @param[in] device   The device.
/// @param[in] folder   Absolute path. A link to a folder lists that folder.
/// @param[in] on_entry Called for each entry, before the call returns.
/// @param[in] user     Passed to @p on_entry.
/// @param[in] call     See ::dk_call; may be null.
/// @retval DK_OK               All entries were reported; there may be none.
/// @retval DK_NOT_FOUND        There is no such folder.
/// @retval DK_NOT_A_DIRECTORY  It is a file.
/// @retval DK_ACCESS_DENIED    The phone's shell may not read it.
/// @retval DK_UNSAFE_NAME      The phone named an entry in a way that no folder can, with a slash for example: it is left out,
///                             all others were reported.
/// @retval DK_STOPPED          @p on_entry returned false.
/// @return Otherwise a code of every call. Entries that came before a failure were reported.
DK_API dk_code dk_list(dk_device* device, const char* folder, dk_on_entry on_entry, void* user,
                       const dk_call* call);

/// What a walk reports. Filters add up. A filter of files (suffixes, sizes) leaves out everything that is not a file;
/// folders are walked through whatever the filters.
typedef struct dk_walk_options {
  size_t size;                  ///< sizeof(dk_walk_options); DK_WALK_OPTIONS_INIT sets it
  uint32_t max_depth;           ///< 1: the folder alone; 0: no limit
  uint32_t types;               ///< a set of (1u << dk_type); 0: all
  const char* const* suffixes;  ///< without the dot, compared without regard to ASCII case; null: all
  size_t suffix_count;          ///< how many there are
  uint64_t min_size;            ///< bytes
  uint64_t max_size;            ///< bytes; 0: no limit
  int64_t newer_than;           ///< mtime after this, seconds since 1970; 0: all
  /// Called with the user of the walk for each folder below that cannot be read, and each entry whose name leads elsewhere
  /// (::DK_UNSAFE_NAME), after which the walk goes on and ends with ::DK_PARTLY_DONE. Null: the same, without a word. Returning
  /// false ends the walk.
  bool (*on_error)(void* user, const dk_error* error);
} dk_walk_options;
/// Everything.
#define DK_WALK_OPTIONS_INIT \
  { sizeof(dk_walk_options), 0, 0, NULL, 0, 0, 0, 0, NULL }
/// Everything below a folder, folder after folder, each folder's entries in the phone's order, a folder before what is in it.
/// Links are reported and not followed. Paths longer than adb carries are not descended into (::DK_NAME_TOO_LONG).
/// @param[in] device   The device.
/// @param[in] folder   Absolute path; it is not reported itself.
/// @param[in] options  Filters; null: everything.
/// @param[in] on_entry Called for each entry, before the call returns.
/// @param[in] user     Passed to @p on_entry and to dk_walk_options::on_error.
/// @param[in] call     See ::dk_call; may be null.
/// @retval DK_OK           Everything was reported.
/// @retval DK_PARTLY_DONE  Some folders below cannot be read; everything else was reported.
/// @retval DK_STOPPED      A callback returned false.
/// @return Otherwise as dk_list(), about @p folder itself.
DK_API dk_code dk_walk(dk_device* device, const char* folder, const dk_walk_options* options,
                       dk_on_entry on_entry, void* user, const dk_call* call);

/// Pieces of a file; false ends the call with ::DK_STOPPED.
typedef bool (*dk_on_bytes)(void* user, const char* data, size_t size);
/// Reads a file, or a part of it, without a file on this computer. The beginning of a file costs no more than itself, so that a
/// thumbnail is read from the first 64 KiB of a photo; an offset is read by a program of the phone.
/// @param[in] device   The device.
/// @param[in] path     Absolute path of a file; links are followed.
/// @param[in] offset   In bytes.
/// @param[in] length   In bytes, fewer come at the file's end; 0: all there is.
/// @param[in] on_bytes Called for each piece.
/// @param[in] user     Passed to @p on_bytes.
/// @param[in] call     See ::dk_call; may be null.
/// @retval DK_OK             Everything was handed out; beyond the end that is nothing.
/// @retval DK_NOT_FOUND      There is no such file.
/// @retval DK_ACCESS_DENIED  The phone's shell may not read it.
/// @retval DK_STOPPED        @p on_bytes returned false.
/// @return Otherwise a code of every call, or of another errno of the phone. Pieces that came before a failure were handed
/// out.
DK_API dk_code dk_read(dk_device* device, const char* path, uint64_t offset, uint64_t length,
                       dk_on_bytes on_bytes, void* user, const dk_call* call);

/// Makes a folder.
/// @param[in] device  The device.
/// @param[in] path    Absolute path of the new folder.
/// @param[in] parents Makes missing parents as well, and an existing folder is not an error.
/// @param[in] call    See ::dk_call; may be null.
/// @retval DK_OK         It is there.
/// @retval DK_EXISTS     Something of that name is there already.
/// @retval DK_NOT_FOUND  Without @p parents: its parent is missing.
/// @return Otherwise a code of every call, or of another errno of the phone: ::DK_ACCESS_DENIED, ::DK_READ_ONLY,
/// ::DK_NO_SPACE.
DK_API dk_code dk_make_folder(dk_device* device, const char* path, bool parents, const dk_call* call);
/// Removes a file, a link (not what it points to), an empty folder, or with @p recursive a folder with all in it. What cannot
/// be removed is left, the rest is removed.
/// @param[in] device    The device.
/// @param[in] path      Absolute path. Refused are `/`, its folders (also `/sdcard`), storage volumes, and paths with `..`.
/// @param[in] recursive Removes a folder with all in it.
/// @param[in] call      See ::dk_call; may be null.
/// @retval DK_OK                It is gone.
/// @retval DK_NOT_FOUND         It was not there.
/// @retval DK_NOT_EMPTY         Without @p recursive: a folder with something in it.
/// @retval DK_INVALID_ARGUMENT  A path that is refused.
/// @return Otherwise a code of every call, or of another errno of the phone, ::DK_ACCESS_DENIED for example.
DK_API dk_code dk_remove(dk_device* device, const char* path, bool recursive, const dk_call* call);
/// Renames a file or folder, or moves it to another folder, also of another volume.
/// @param[in] device  The device.
/// @param[in] from    Absolute path of what is moved.
/// @param[in] to      Absolute path that it gets; never taken for a folder to move into.
/// @param[in] replace An existing file at @p to is replaced.
/// @param[in] call    See ::dk_call; may be null.
/// @retval DK_OK                It has the new path.
/// @retval DK_NOT_FOUND         There is nothing at @p from, or the folder of @p to is missing.
/// @retval DK_EXISTS            There is something at @p to, and @p replace is false.
/// @retval DK_IS_A_DIRECTORY    There is a folder at @p to.
/// @retval DK_INVALID_ARGUMENT  Both paths are the same.
/// @return Otherwise a code of every call, or of another errno of the phone.
DK_API dk_code dk_move(dk_device* device, const char* from, const char* to, bool replace,
                       const dk_call* call);
/// Copies a file, or a folder with all in it, on the phone, modes and times kept where the phone's storage keeps them. The copy
/// gets its name when it is whole; what was copied before a failure is removed.
/// @param[in] device  The device.
/// @param[in] from    Absolute path of what is copied.
/// @param[in] to      Absolute path of the copy; never taken for a folder to copy into.
/// @param[in] replace An existing file at @p to is replaced.
/// @param[in] call    See ::dk_call; may be null.
/// @retval DK_OK        There is a copy.
/// @retval DK_NO_SPACE  The phone's storage is full.
/// @return Otherwise as dk_move().
DK_API dk_code dk_copy(dk_device* device, const char* from, const char* to, bool replace,
                       const dk_call* call);
/// Changes the permissions of a file or folder. The storage that users see (`/sdcard`, cards) ignores them without a word.
/// @param[in] device The device.
/// @param[in] path   Absolute path; links are followed.
/// @param[in] mode   As 0644; at most 07777.
/// @param[in] call   See ::dk_call; may be null.
/// @retval DK_OK             The phone took it.
/// @retval DK_ACCESS_DENIED  The file belongs to another user of the phone.
/// @return Otherwise a code of every call, or of another errno of the phone.
DK_API dk_code dk_chmod(dk_device* device, const char* path, uint32_t mode, const dk_call* call);

/// @}
/// @defgroup client_transfers Client: transfers
/// Many files in one call, both ways, and from memory.
///
/// @code{.c}
/// #include <darokleim/client.h>
/// #include <stdio.h>
///
/// static bool show_progress(void* user, const dk_progress* progress) {
///   (void)user;
///   printf("%llu of %llu bytes\n", (unsigned long long)progress->bytes_done, (unsigned long long)progress->bytes_total);
///   return true;  // false stops
/// }
///
/// // Copies the camera's folder to this computer; the next time, what is new or has changed.
/// static dk_code back_up(dk_device* phone, const char* folder, const dk_call* call) {
///   const dk_item items[] = {{"/sdcard/DCIM", folder}};
///   dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
///   options.existing = DK_SKIP_SAME;
///   options.on_progress = show_progress;
///   dk_summary summary;
///   return dk_pull(phone, items, 1, &options, &summary, call);
/// }
/// @endcode
/// @{

/// What to do with a file that is at the target already. A folder in the way of a file is always an error.
typedef enum dk_existing {
  DK_FAIL_IF_EXISTS = 0,  ///< ::DK_EXISTS
  DK_REPLACE = 1,         ///< replace it, once the new one is whole
  DK_SKIP_SAME = 2,      ///< skip what has the same size and modification time (in seconds), replace the rest
  DK_SKIP_EXISTING = 3,  ///< skip it whatever it holds
} dk_existing;

/// One file or folder to transfer.
typedef struct dk_item {
  const char* source;  ///< a file or a folder; of the phone: an absolute path
  /// The file or folder that it becomes, not a folder to put it in. Missing parents are made. A folder that is there is
  /// added to. Of this computer: also relative to the current folder.
  const char* target;
} dk_item;

/// How far a transfer is.
typedef struct dk_progress {
  const char* path;      ///< the source file that is at work; empty at the end
  uint64_t file_done;    ///< bytes of it
  uint64_t file_size;    ///< bytes of it in all
  uint64_t bytes_done;   ///< of all items; skipped files count as done
  uint64_t bytes_total;  ///< of all items; grows with a file that grew
  uint64_t files_done;   ///< whole, or skipped
  uint64_t files_total;  ///< of all items
} dk_progress;

/// What a transfer came to. Folders are not counted.
typedef struct dk_summary {
  uint64_t files_sent;     ///< whole, under their names; after a failure, as far as is known
  uint64_t files_skipped;  ///< as dk_existing says
  uint64_t files_failed;   ///< each was reported
  uint64_t bytes_sent;     ///< really sent, parts of failed files included
} dk_summary;

/// How files are transferred.
typedef struct dk_transfer_options {
  size_t size;           ///< sizeof(dk_transfer_options); DK_TRANSFER_OPTIONS_INIT sets it
  dk_existing existing;  ///< what to do with a file that is at the target already
  bool keep_going;  ///< after a file's error: report it and go on; the call then ends with ::DK_PARTLY_DONE
  bool keep_times;  ///< modification times; DK_TRANSFER_OPTIONS_INIT sets it; ::DK_SKIP_SAME depends on it
  bool keep_modes;  ///< permissions, where the target can have them
  /// Before each block, on the caller's thread; false ends the call with ::DK_STOPPED. Once more at the end, when the answer
  /// changes nothing. Totals are known before the first byte. Null: none.
  bool (*on_progress)(void* user, const dk_progress* progress);
  /// Of one file, with its path, where the call keeps going; false ends the call with ::DK_STOPPED. Null: none.
  bool (*on_error)(void* user, const dk_error* error);
  void* user;  ///< passed to both
} dk_transfer_options;
/// Nothing is replaced, the first error ends the call, times are kept.
#define DK_TRANSFER_OPTIONS_INIT \
  { sizeof(dk_transfer_options), DK_FAIL_IF_EXISTS, false, true, false, NULL, NULL, NULL }

/// Sends files and folders to the phone. Each file is whole before it gets its name: it is transferred into a temporary folder
/// beside its target and moved, so that no failure, cancel or unplugging harms an older file. What is done stays done; temporary
/// files are removed. Those that could not be, because the phone was gone or the process was killed, are removed by the next
/// transfer into the same folder.
///
/// In folders, links to files of the same tree are transferred as those files; all others are not followed (each is reported
/// with ::DK_UNSUPPORTED). Special files are left out, and temporary files of transfers (`.darokleim-…`).
///
/// @param[in]  device  The device.
/// @param[in]  items   Sources on this computer, targets on the phone.
/// @param[in]  count   How many there are; 0 does nothing.
/// @param[in]  options May be null, which is #DK_TRANSFER_OPTIONS_INIT.
/// @param[out] summary What was done, also after a failure. May be null.
/// @param[in]  call    See ::dk_call; may be null. Removing temporary files after a cancel may take a few seconds more.
/// @retval DK_OK           Every file is there.
/// @retval DK_PARTLY_DONE  With dk_transfer_options::keep_going: some files failed.
/// @retval DK_EXISTS       A target is there, and dk_transfer_options::existing is ::DK_FAIL_IF_EXISTS.
/// @retval DK_NO_SPACE     The phone's storage is full.
/// @retval DK_CHANGED      A file changed while it was read.
/// @retval DK_STOPPED      A callback returned false.
/// @return Otherwise a code of every call, or of an errno of either side, ::DK_NOT_FOUND for example.
DK_API dk_code dk_push(dk_device* device, const dk_item* items, size_t count,
                       const dk_transfer_options* options, dk_summary* summary, const dk_call* call);
/// Fetches files and folders from the phone, as dk_push() sends them: each into a temporary file beside its target, which is
/// renamed when it is whole.
///
/// Names from the phone that would leave the target folder (`..`, with a slash), or that meet another name there on a computer
/// that ignores case, are refused one by one with ::DK_UNSAFE_NAME. Links on this computer are not written through. A file that
/// another program makes at a target meanwhile is treated as one that was there before.
///
/// @param[in]  device  The device.
/// @param[in]  items   Sources on the phone, targets on this computer.
/// @param[in]  count   How many there are; 0 does nothing.
/// @param[in]  options May be null, which is #DK_TRANSFER_OPTIONS_INIT.
/// @param[out] summary What was done, also after a failure. May be null.
/// @param[in]  call    See ::dk_call; may be null.
/// @retval DK_UNSAFE_NAME  A name of the phone that cannot be used here.
/// @return Otherwise as dk_push().
DK_API dk_code dk_pull(dk_device* device, const dk_item* items, size_t count,
                       const dk_transfer_options* options, dk_summary* summary, const dk_call* call);

/// Hands out the next bytes of a file that is being sent: fills at most capacity bytes of buffer, returns how many, 0 at
/// the end, and a negative number to end the call with ::DK_STOPPED.
typedef int64_t (*dk_source)(void* user, char* buffer, size_t capacity);
/// Sends what the source gives as one file, which gets its name when it is whole.
/// @param[in] device  The device.
/// @param[in] path    Absolute path of the file; missing parents are made.
/// @param[in] mode    Permissions as 0644, which the storage that users see ignores.
/// @param[in] mtime   Modification time, seconds since 1970, less than 2^32; 0: now.
/// @param[in] replace An existing file is replaced.
/// @param[in] source  Called for each block, on the caller's thread, until it returns 0.
/// @param[in] user    Passed to @p source.
/// @param[in] call    See ::dk_call; may be null.
/// @retval DK_OK              The file is there.
/// @retval DK_EXISTS          It was there already, and @p replace is false.
/// @retval DK_IS_A_DIRECTORY  There is a folder of that name.
/// @retval DK_NO_SPACE        The phone's storage is full.
/// @retval DK_STOPPED         @p source returned a negative number; there is no file, and an older one is unharmed.
/// @return Otherwise a code of every call, or of another errno of the phone.
DK_API dk_code dk_write(dk_device* device, const char* path, uint32_t mode, int64_t mtime, bool replace,
                        dk_source source, void* user, const dk_call* call);

/// @}
/// @defgroup client_shell Client: commands on the phone
/// A program of the phone with its output, its errors and its exit status.
///
/// Phones before Android 7 do not pass on an exit status: a command is made to print it at the end, and it is taken off
/// again. Output and errors come as one stream there.
///
/// @code{.c}
/// #include <darokleim/client.h>
/// #include <stdio.h>
///
/// // Prints the kernel's version.
/// static dk_code print_kernel(dk_device* phone, const dk_call* call) {
///   const char* const arguments[] = {"uname", "-r"};
///   dk_output output;
///   const dk_code code = dk_run(phone, arguments, 2, NULL, &output, call);
///   if (code == DK_OK && output.exit_status == 0) printf("%s", output.out.data);
///   dk_output_free(&output);
///   return code;
/// }
/// @endcode
/// @{

/// Where a command wrote to.
typedef enum dk_stream {
  DK_STDOUT = 1,  ///< its output; before Android 7 also its errors
  DK_STDERR = 2   ///< its errors
} dk_stream;

/// How a command runs.
typedef struct dk_run_options {
  size_t size;        ///< sizeof(dk_run_options); DK_RUN_OPTIONS_INIT sets it
  const char* input;  ///< for the command's standard input; null: it is empty. Not to phones before Android 7
  size_t input_size;  ///< bytes
  /// Each piece as it comes, on the caller's thread. False ends the command, and the call with ::DK_STOPPED. Null: the output is
  /// collected.
  bool (*on_output)(void* user, dk_stream stream, const char* data, size_t size);
  void* user;             ///< passed to on_output
  size_t most_collected;  ///< bytes kept of each stream for dk_output, the first ones; 0: 1 MiB
} dk_run_options;
/// No input, and up to 1 MiB of each stream is collected.
#define DK_RUN_OPTIONS_INIT \
  { sizeof(dk_run_options), NULL, 0, NULL, NULL, 0 }

/// What a command came to.
typedef struct dk_output {
  dk_bytes out;     ///< its output; empty when on_output took it
  dk_bytes err;     ///< its errors; empty when on_output took them
  bool cut;         ///< more came than was kept
  int exit_status;  ///< of the command; 128 and more: ended by a signal, as its shell counts
} dk_output;
/// Frees what is in it.
/// @param[in,out] output The structure; null is ignored.
DK_API void dk_output_free(dk_output* output);

/// Runs a program of the phone with an argument list. The list is quoted by the library: no argument is read by a shell.
/// The call succeeds when the command ran, whatever its exit status, which is in the output.
/// @param[in]  device    The device.
/// @param[in]  arguments The program and its arguments.
/// @param[in]  count     How many there are, the program included.
/// @param[in]  options   May be null, which is #DK_RUN_OPTIONS_INIT.
/// @param[out] output    What it printed, to free with dk_output_free(); cleared on failure. May be null.
/// @param[in]  call      See ::dk_call; may be null. The phone ends a command whose connection is closed with SIGHUP.
/// @retval DK_OK               It ran. Look at dk_output::exit_status: 127 is a program that the phone does not have.
/// @retval DK_CONNECTION_LOST  The end of its output is missing.
/// @retval DK_NAME_TOO_LONG    The quoted words have more than 65,000 bytes; for phones before Android 7, more than about 4,000.
/// @retval DK_UNSUPPORTED      There is input, and the phone is older than Android 7.
/// @retval DK_STOPPED          dk_run_options::on_output returned false.
/// @return Otherwise a code of every call.
DK_API dk_code dk_run(dk_device* device, const char* const* arguments, size_t count,
                      const dk_run_options* options, dk_output* output, const dk_call* call);
/// The same for a script, which the phone's shell reads. Quote what comes from elsewhere with dk_quote().
/// @param[in]  device  The device.
/// @param[in]  script  What the shell reads; may have several lines.
/// @param[in]  options As for dk_run().
/// @param[out] output  As for dk_run().
/// @param[in]  call    As for dk_run().
/// @return As dk_run().
DK_API dk_code dk_run_script(dk_device* device, const char* script, const dk_run_options* options,
                             dk_output* output, const dk_call* call);
/// @param[in]  text   Any text.
/// @param[out] quoted The text as one word for the phone's shell, to free with dk_bytes_free().
/// @return ::DK_OK, ::DK_INVALID_ARGUMENT or ::DK_OUT_OF_MEMORY.
DK_API dk_code dk_quote(const char* text, dk_bytes* quoted);

/// @}
/// @defgroup client_sessions Client: shell sessions
/// A command, or a shell, that is given input while it runs: what a terminal window is made of, and what a pipe feeds.
///
/// @code{.c}
/// #include <darokleim/client.h>
/// #include <stdio.h>
///
/// // Both on a thread of the session.
/// static void on_output(void* user, dk_stream stream, const char* data, size_t size) {
///   (void)user;
///   fwrite(data, 1, size, stream == DK_STDERR ? stderr : stdout);
/// }
/// static void on_shell_end(void* user, dk_code code, int exit_status, const dk_error* error) {
///   (void)user;
///   if (code != DK_OK) fprintf(stderr, "%s\n", dk_error_message(error));
///   else printf("The command ended with %d.\n", exit_status);
/// }
///
/// // Lines in an order, as the phone sorts them. The session lasts until dk_shell_stop(*shell).
/// static dk_code sort_lines(dk_device* phone, dk_shell** shell, const dk_call* call) {
///   dk_shell_options options = DK_SHELL_OPTIONS_INIT;
///   options.command = "sort";
///   dk_code code = dk_shell_start(phone, &options, on_output, on_shell_end, NULL, shell, call);
///   if (code == DK_OK) code = dk_shell_write(*shell, "b\na\n", 4, call);
///   if (code == DK_OK) code = dk_shell_close_input(*shell, call);
///   return code;
/// }
/// @endcode
/// @{

/// What a session runs.
typedef struct dk_shell_options {
  size_t size;  ///< sizeof(dk_shell_options); DK_SHELL_OPTIONS_INIT sets it
  const char*
      command;  ///< what the phone's shell reads; null: a shell that reads its commands from the input
  /// Through a terminal of the phone, as programs that a person works with need it: it shows what is typed, ends lines in CR LF,
  /// has errors in one stream with the output, and takes 0x03 (Ctrl-C) of the input as the order to interrupt. Phones before
  /// Android 7 have nothing else.
  bool terminal;
  const char*
      terminal_type;  ///< TERM on the phone, without commas and colons; null: its choice. Not before Android 7
  uint16_t rows;      ///< of the window, for a terminal; 0: not known. Not before Android 7
  uint16_t columns;   ///< of the window
} dk_shell_options;
/// A shell without a terminal.
#define DK_SHELL_OPTIONS_INIT \
  { sizeof(dk_shell_options), NULL, false, NULL, 0, 0 }

/// A session that runs.
typedef struct dk_shell dk_shell;
/// On the session's thread. The phone waits while it runs.
typedef void (*dk_on_shell_output)(void* user, dk_stream stream, const char* data, size_t size);
/// On the session's thread. Once, last. ::DK_OK: the command has ended, with this exit status, 128 and more where a signal ended
/// it; -1 where the phone does not say it (before Android 7), or dk_shell_stop() ended the session. ::DK_CONNECTION_LOST: the
/// phone or the server is gone. error is null with ::DK_OK, and where memory ran out.
typedef void (*dk_on_shell_end)(void* user, dk_code code, int exit_status, const dk_error* error);
/// Returns once the phone has taken the order; output comes on a thread of the session.
/// @param[in]  device    The device, which must outlive the session.
/// @param[in]  options   May be null, which is #DK_SHELL_OPTIONS_INIT. Copied.
/// @param[in]  on_output Called for each piece of output.
/// @param[in]  on_end    Called at the end. May be null.
/// @param[in]  user      Passed to both; must live until the session has stopped.
/// @param[out] shell     The session, to stop with dk_shell_stop(), also after its end; null on failure.
/// @param[in]  call      For the start alone. May be null.
/// @retval DK_OK           It runs.
/// @retval DK_UNSUPPORTED  It is to run without a terminal, and the phone is older than Android 7.
/// @return Otherwise a code of every call.
DK_API dk_code dk_shell_start(dk_device* device, const dk_shell_options* options,
                              dk_on_shell_output on_output, dk_on_shell_end on_end, void* user,
                              dk_shell** shell, const dk_call* call);
/// Gives input to the command. Returns when the session has taken all of it, which is before the phone has; it takes up to 64 KiB
/// more than the phone does, and waits otherwise. From within a callback of the session it does not wait. Input that the
/// command never reads is lost.
/// @param[in] shell The session.
/// @param[in] data  Bytes; through a terminal, keys as a terminal sends them.
/// @param[in] size  How many.
/// @param[in] call  See ::dk_call; may be null.
/// @retval DK_OK       It is taken.
/// @retval DK_STOPPED  The session has ended, or its input was closed. Some of it may have been taken.
/// @return Otherwise ::DK_CANCELLED, ::DK_TIMED_OUT, ::DK_OUT_OF_MEMORY or ::DK_INVALID_ARGUMENT.
DK_API dk_code dk_shell_write(dk_shell* shell, const char* data, size_t size, const dk_call* call);
/// Ends the input after what was written. A terminal gets its end of file (Ctrl-D), which ends a shell at the beginning of a
/// line.
/// @param[in] shell The session.
/// @param[in] call  See ::dk_call; may be null. The call never waits.
/// @return ::DK_OK, also when it was closed before; ::DK_OUT_OF_MEMORY or ::DK_INVALID_ARGUMENT.
DK_API dk_code dk_shell_close_input(dk_shell* shell, const dk_call* call);
/// Says that the window of the terminal has another size. Phones before Android 7 are not told.
/// @param[in] shell   The session.
/// @param[in] rows    Lines of text.
/// @param[in] columns Characters in each.
/// @param[in] call    See ::dk_call; may be null. The call never waits.
/// @return ::DK_OK, ::DK_OUT_OF_MEMORY or ::DK_INVALID_ARGUMENT.
DK_API dk_code dk_shell_resize(dk_shell* shell, uint16_t rows, uint16_t columns, const dk_call* call);
/// Ends the session where it has not ended, and frees it. The phone ends the command with SIGHUP. The end is reported before it
/// returns, and no callback runs after it. When it is called from within a callback of the session, none runs after that one:
/// the end is then not reported.
/// @param[in] shell The session, which no other thread may use any more; null is ignored.
DK_API void dk_shell_stop(dk_shell* shell);

/// @}
/// @defgroup client_apps Client: applications
/// What is installed, installing, starting.
///
/// @code{.c}
/// #include <darokleim/client.h>
/// #include <stdio.h>
///
/// // Why it was not installed, in words that can be searched for.
/// static dk_code install(dk_device* phone, const char* apk) {
///   dk_error* error = NULL;
///   dk_call call = DK_CALL_INIT;
///   call.error = &error;
///   const dk_code code = dk_app_install(phone, &apk, 1, NULL, &call);
///   if (code == DK_INSTALL_FAILED && dk_error_reason(error) != NULL) puts(dk_error_reason(error));
///   dk_error_free(error);
///   return code;
/// }
/// @endcode
/// @{

/// An application. Texts are never null.
typedef struct dk_app {
  const char* package;           ///< its name, `com.example.notes`
  const char* version_name;      ///< as it calls itself; empty when not known
  int64_t version_code;          ///< counts up with each version; -1 when not known
  bool system;                   ///< came with the phone
  bool enabled;                  ///< can be started
  uint64_t size;                 ///< bytes of its APKs; 0 unless asked for
  const char* const* apk_paths;  ///< on the phone, the base first; dk_pull() fetches them
  size_t apk_count;              ///< how many there are
} dk_app;
/// False ends the call with ::DK_STOPPED.
typedef bool (*dk_on_app)(void* user, const dk_app* app);

/// Which applications.
typedef enum dk_app_set {
  DK_ALL_APPS = 0,    ///< all
  DK_USER_APPS = 1,   ///< that were installed by the user
  DK_SYSTEM_APPS = 2  ///< that came with the phone
} dk_app_set;
/// Applications of the phone's first user, in a few commands however many there are.
/// @param[in] device The device.
/// @param[in] set    Which.
/// @param[in] sizes  Asks for dk_app::size as well.
/// @param[in] on_app Called for each, before the call returns.
/// @param[in] user   Passed to @p on_app.
/// @param[in] call   See ::dk_call; may be null. Phones take a second or more for it.
/// @retval DK_OK       All were reported.
/// @retval DK_STOPPED  @p on_app returned false.
/// @return Otherwise a code of every call.
DK_API dk_code dk_apps(dk_device* device, dk_app_set set, bool sizes, dk_on_app on_app, void* user,
                       const dk_call* call);
/// Asks for one application, its size included.
/// @param[in]  device  The device.
/// @param[in]  package Its name: letters, digits, `_` and `.`.
/// @param[out] app     The application, to free with dk_app_free(); null on failure.
/// @param[in]  call    See ::dk_call; may be null.
/// @retval DK_OK          It is installed.
/// @retval DK_NO_PACKAGE  It is not.
/// @return Otherwise a code of every call.
DK_API dk_code dk_app_get(dk_device* device, const char* package, dk_app** app, const dk_call* call);
/// @param[in] app An application of dk_app_get(), never one that a callback was given; null is ignored.
DK_API void dk_app_free(dk_app* app);

/// How an application is installed.
typedef struct dk_install_options {
  size_t size;     ///< sizeof(dk_install_options); DK_INSTALL_OPTIONS_INIT sets it
  bool replace;    ///< an installed version keeps its data; DK_INSTALL_OPTIONS_INIT sets it
  bool downgrade;  ///< also an older version
  bool grant;      ///< all permissions that it asks for; since Android 6
  bool test;       ///< also one that is marked as for tests only
  /// Before each block, on the caller's thread; false ends the call with ::DK_STOPPED. Null: none.
  bool (*on_progress)(void* user, uint64_t bytes_done, uint64_t bytes_total);
  void* user;  ///< passed to on_progress
} dk_install_options;
/// Replaces an installed version that is not newer.
#define DK_INSTALL_OPTIONS_INIT \
  { sizeof(dk_install_options), true, false, false, false, NULL, NULL }
/// Installs one APK, or the several of one application together. They are streamed into the phone's package manager; a phone
/// before Android 7 gets them under a temporary name that nobody else uses. It is always removed: where the phone is gone, by the next
/// installation.
/// @param[in] device    The device.
/// @param[in] apk_paths On this computer.
/// @param[in] count     How many there are.
/// @param[in] options   May be null, which is #DK_INSTALL_OPTIONS_INIT.
/// @param[in] call      See ::dk_call; may be null. A phone may ask its user first, and wait.
/// @retval DK_OK              It is installed.
/// @retval DK_INSTALL_FAILED  Android refused; dk_error_reason() is `INSTALL_FAILED_UPDATE_INCOMPATIBLE` for example.
/// @retval DK_NOT_FOUND       There is no such file on this computer.
/// @retval DK_STOPPED         dk_install_options::on_progress returned false; nothing is installed.
/// @return Otherwise a code of every call.
DK_API dk_code dk_app_install(dk_device* device, const char* const* apk_paths, size_t count,
                              const dk_install_options* options, const dk_call* call);
/// Removes an application.
/// @param[in] device    The device.
/// @param[in] package   Its name.
/// @param[in] keep_data Its data stays, for a later installation.
/// @param[in] call      See ::dk_call; may be null.
/// @retval DK_OK              It is removed.
/// @retval DK_NO_PACKAGE      It was not installed.
/// @retval DK_COMMAND_FAILED  Android refused; see dk_error_reason(). Applications that came with the phone stay.
/// @return Otherwise a code of every call.
DK_API dk_code dk_app_uninstall(dk_device* device, const char* package, bool keep_data, const dk_call* call);
/// Brings an application to the screen.
/// @param[in] device   The device.
/// @param[in] package  Its name.
/// @param[in] activity A class, in full or from its dot on, as `.Settings`. Null starts what the phone's launcher would.
/// @param[in] call     See ::dk_call; may be null.
/// @retval DK_OK              The phone has taken the order.
/// @retval DK_NO_PACKAGE      Without @p activity: it is not installed, or the launcher does not show it.
/// @retval DK_COMMAND_FAILED  There is no such activity, or it may not be started from outside.
/// @return Otherwise a code of every call.
DK_API dk_code dk_app_start(dk_device* device, const char* package, const char* activity,
                            const dk_call* call);
/// Ends all processes of an application. One that does not run, or is not installed, is not an error: phones do not say it.
/// @param[in] device  The device.
/// @param[in] package Its name.
/// @param[in] call    See ::dk_call; may be null.
/// @return ::DK_OK, otherwise a code of every call.
DK_API dk_code dk_app_stop(dk_device* device, const char* package, const dk_call* call);
/// Deletes the data of an application, as if it were newly installed.
/// @param[in] device  The device.
/// @param[in] package Its name.
/// @param[in] call    See ::dk_call; may be null.
/// @retval DK_OK          They are gone.
/// @retval DK_NO_PACKAGE  The phone refused; mostly because it is not installed.
/// @return Otherwise a code of every call.
DK_API dk_code dk_app_clear(dk_device* device, const char* package, const dk_call* call);

/// @}
/// @defgroup client_backups Client: backups
/// By Android's backup service: without the APK, in Android's own format (`adb backup`). The phone asks its user, who has to
/// unlock it and confirm; set no short limit in time. A call that ends before the answer closes the question. Applications
/// may forbid backups, and most of those made for Android 12 and later do.
///
/// @code{.c}
/// #include <darokleim/client.h>
/// #include <stdio.h>
///
/// static bool save_piece(void* user, const char* data, size_t size) {
///   return fwrite(data, 1, size, (FILE*)user) == size;
/// }
///
/// // Keep the file only when this succeeds.
/// static dk_code save(dk_device* phone, const char* package, FILE* file, const dk_call* call) {
///   return dk_backup(phone, package, save_piece, file, call);
/// }
/// @endcode
/// @{

/// Saves the data of an application.
/// @param[in] device   The device.
/// @param[in] package  Its name.
/// @param[in] on_bytes Called for each piece of the backup. Keep the pieces only when the call has succeeded.
/// @param[in] user     Passed to @p on_bytes.
/// @param[in] call     See ::dk_call; may be null.
/// @retval DK_OK              The backup is complete.
/// @retval DK_NO_PACKAGE      It is not installed.
/// @retval DK_COMMAND_FAILED  The phone saved nothing: it was refused on its screen, or the application forbids it.
/// @retval DK_STOPPED         @p on_bytes returned false.
/// @return Otherwise a code of every call.
DK_API dk_code dk_backup(dk_device* device, const char* package, dk_on_bytes on_bytes, void* user,
                         const dk_call* call);
/// Sends a backup to the phone, which does not say whether its user agreed, nor whether it could read the backup.
/// @param[in] device The device.
/// @param[in] source Called for each block, on the caller's thread, until it returns 0.
/// @param[in] user   Passed to @p source.
/// @param[in] call   See ::dk_call; may be null.
/// @retval DK_OK                The phone has received all of it.
/// @retval DK_INVALID_ARGUMENT  It does not begin as a backup does; nothing was sent.
/// @retval DK_STOPPED           @p source returned a negative number.
/// @return Otherwise a code of every call.
DK_API dk_code dk_restore(dk_device* device, dk_source source, void* user, const dk_call* call);
/// Closes the question of a backup or a restore on the phone's screen, also of another program; it then ends.
/// @param[in] device The device.
/// @param[in] call   See ::dk_call; may be null.
/// @return ::DK_OK, also when there is no question; otherwise a code of every call.
DK_API dk_code dk_backup_dismiss(dk_device* device, const dk_call* call);

/// @}
/// @defgroup client_facts Client: what a phone is
/// Properties, battery, screen, memory, storage. Each question is one command.
///
/// @code{.c}
/// #include <darokleim/client.h>
/// #include <stdio.h>
///
/// static bool print_volume(void* user, const dk_volume* volume) {
///   (void)user;
///   printf("%s: %llu of %llu bytes are free\n", volume->path, (unsigned long long)volume->free,
///          (unsigned long long)volume->total);
///   return true;
/// }
///
/// static dk_code print_facts(dk_device* phone, const dk_call* call) {
///   dk_battery battery;
///   const dk_code code = dk_battery_get(phone, &battery, call);
///   if (code == DK_OK) printf("%d %%%s\n", battery.level, battery.charging ? ", charging" : "");
///   return code == DK_OK ? dk_volumes(phone, print_volume, NULL, call) : code;
/// }
/// @endcode
/// @{

/// False ends the call with ::DK_STOPPED.
typedef bool (*dk_on_property)(void* user, const char* name, const char* value);
/// All system properties, in one command. Values may have several lines.
/// @param[in] device      The device.
/// @param[in] on_property Called for each, before the call returns, in the phone's order (by name).
/// @param[in] user        Passed to @p on_property.
/// @param[in] call        See ::dk_call; may be null.
/// @retval DK_OK       All were reported.
/// @retval DK_STOPPED  @p on_property returned false.
/// @return Otherwise a code of every call.
DK_API dk_code dk_properties(dk_device* device, dk_on_property on_property, void* user, const dk_call* call);

/// The battery.
typedef struct dk_battery {
  int level;           ///< percent
  bool charging;       ///< attached to a power source
  double temperature;  ///< degrees Celsius; 0 when not known
  int voltage_mv;      ///< millivolts; 0 when not known
} dk_battery;
/// @param[in]  device  The device.
/// @param[out] battery The battery; cleared on failure.
/// @param[in]  call    See ::dk_call; may be null.
/// @retval DK_OK                 The battery.
/// @retval DK_ANSWER_UNREADABLE  The device has none, as many emulators.
/// @return Otherwise a code of every call.
DK_API dk_code dk_battery_get(dk_device* device, dk_battery* battery, const dk_call* call);

/// The screen, as it is set: a size or density that was set by hand wins over that of the hardware.
typedef struct dk_screen {
  int width;    ///< pixels, when the device is held as it is made for
  int height;   ///< pixels
  int density;  ///< dots per inch; 0 when not known
} dk_screen;
/// @param[in]  device The device.
/// @param[out] screen The screen; cleared on failure.
/// @param[in]  call   See ::dk_call; may be null.
/// @retval DK_OK  The screen.
/// @return Otherwise a code of every call.
DK_API dk_code dk_screen_get(dk_device* device, dk_screen* screen, const dk_call* call);

/// The memory.
typedef struct dk_memory {
  uint64_t total;      ///< bytes, without what the hardware keeps for itself
  uint64_t available;  ///< bytes that applications can have; before Android 5 an estimate
} dk_memory;
/// @param[in]  device The device.
/// @param[out] memory The memory; cleared on failure.
/// @param[in]  call   See ::dk_call; may be null.
/// @retval DK_OK  The memory.
/// @return Otherwise a code of every call.
DK_API dk_code dk_memory_get(dk_device* device, dk_memory* memory, const dk_call* call);

/// A storage volume that users see.
typedef struct dk_volume {
  const char* path;  ///< `/storage/emulated/0`, `/storage/1234-5678`
  bool internal;     ///< not a card or a USB stick
  uint64_t total;    ///< bytes; before Android 7 this and the following are rounded by the phone
  uint64_t used;     ///< bytes
  uint64_t free;     ///< bytes that applications can still write
} dk_volume;
/// False ends the call with ::DK_STOPPED.
typedef bool (*dk_on_volume)(void* user, const dk_volume* volume);
/// The storage volumes, the internal one first.
/// @param[in] device    The device.
/// @param[in] on_volume Called for each, before the call returns.
/// @param[in] user      Passed to @p on_volume.
/// @param[in] call      See ::dk_call; may be null.
/// @retval DK_OK       All were reported.
/// @retval DK_STOPPED  @p on_volume returned false.
/// @return Otherwise a code of every call.
DK_API dk_code dk_volumes(dk_device* device, dk_on_volume on_volume, void* user, const dk_call* call);

/// @}
/// @defgroup client_screen Client: screen and input
/// What the phone's user sees and does.
///
/// @code{.c}
/// #include <darokleim/client.h>
/// #include <stdio.h>
///
/// static dk_code save_screenshot(dk_device* phone, FILE* file, const dk_call* call) {
///   dk_bytes png;
///   const dk_code code = dk_screenshot(phone, &png, call);
///   if (code == DK_OK) fwrite(png.data, 1, png.size, file);
///   dk_bytes_free(&png);
///   return code;
/// }
/// @endcode
/// @{

/// A picture of the screen as it is held. What applications protect is black.
/// @param[in]  device The device.
/// @param[out] png    A PNG, to free with dk_bytes_free(); empty on failure.
/// @param[in]  call   See ::dk_call; may be null. A phone takes about a second for it.
/// @retval DK_OK              There is a picture.
/// @retval DK_COMMAND_FAILED  The phone gave none.
/// @return Otherwise a code of every call.
DK_API dk_code dk_screenshot(dk_device* device, dk_bytes* png, const dk_call* call);
/// Types text into what has the focus. It is in no log and no error of this library.
/// @param[in] device The device.
/// @param[in] text   Printable ASCII and spaces: phones do not take more.
/// @param[in] call   See ::dk_call; may be null.
/// @retval DK_OK                The phone has taken it.
/// @retval DK_INVALID_ARGUMENT  Other characters, line breaks too (press `ENTER`).
/// @return Otherwise a code of every call.
DK_API dk_code dk_type_text(dk_device* device, const char* text, const dk_call* call);
/// Presses a key.
/// @param[in] device The device.
/// @param[in] key    A number or a name of Android's KeyEvent, `KEYCODE_HOME`, `HOME` or `3`.
/// @param[in] call   See ::dk_call; may be null.
/// @retval DK_OK              The phone has taken it.
/// @retval DK_COMMAND_FAILED  There is no such key. Phones before Android 7 may not say it.
/// @return Otherwise a code of every call.
DK_API dk_code dk_press_key(dk_device* device, const char* key, const dk_call* call);
/// Taps the screen.
/// @param[in] device The device.
/// @param[in] x      Pixels from the left, as the device is held.
/// @param[in] y      Pixels from the top.
/// @param[in] call   See ::dk_call; may be null.
/// @return ::DK_OK, otherwise a code of every call.
DK_API dk_code dk_tap(dk_device* device, int x, int y, const dk_call* call);
/// Swipes from one point of the screen to another. From a point to itself it is a long press.
/// @param[in] device      The device.
/// @param[in] x1,y1       Where it begins, in pixels as for dk_tap().
/// @param[in] x2,y2       Where it ends.
/// @param[in] duration_ms How long it takes, in milliseconds; the call lasts as long.
/// @param[in] call        See ::dk_call; may be null.
/// @return ::DK_OK, otherwise a code of every call.
DK_API dk_code dk_swipe(dk_device* device, int x1, int y1, int x2, int y2, int duration_ms,
                        const dk_call* call);

/// @}
/// @defgroup client_log Client: the phone's log
/// Record by record, as they are written.
///
/// @code{.c}
/// #include <darokleim/client.h>
/// #include <stdio.h>
///
/// // Both on a thread of the log.
/// static void on_record(void* user, const dk_log_record* record) {
///   (void)user;
///   printf("%c/%s: %s\n", record->level, record->tag, record->text);
/// }
/// static void on_end(void* user, dk_code code, const dk_error* error) {
///   (void)user;
///   if (code != DK_OK) fprintf(stderr, "%s\n", dk_error_message(error));
/// }
///
/// // Errors of all, from now on, until dk_log_stop(*log).
/// static dk_code follow_errors(dk_device* phone, dk_log** log, const dk_call* call) {
///   static const char* const filters[] = {"*:E"};
///   dk_log_options options = DK_LOG_OPTIONS_INIT;
///   options.filters = filters;
///   options.filter_count = 1;
///   options.only_new = true;
///   return dk_log_start(phone, &options, on_record, on_end, NULL, log, call);
/// }
/// @endcode
/// @{

/// One record. Texts are never null.
typedef struct dk_log_record {
  int64_t seconds;      ///< since 1970, UTC, by the phone's clock
  int32_t nanoseconds;  ///< of the second
  char level;           ///< V D I W E F
  uint32_t process;     ///< the process that wrote it
  uint32_t thread;      ///< its thread
  const char* tag;      ///< who says it
  const char* text;     ///< may have several lines
} dk_log_record;

/// What a log gives.
typedef struct dk_log_options {
  size_t size;                 ///< sizeof(dk_log_options); DK_LOG_OPTIONS_INIT sets it
  const char* const* filters;  ///< as logcat takes them, `ActivityManager:I`, `*:S`; null: everything
  size_t filter_count;         ///< how many there are
  const char* buffers;         ///< `main,system,crash`; null: the phone's choice
  bool only_new;               ///< not what is in the buffer already, to the second
  bool stop_at_end;            ///< what is in the buffer, then the end
  size_t most_old;             ///< of what is in the buffer already, the last records alone; 0: all
} dk_log_options;
/// Everything, what is in the buffer first, until it is stopped.
#define DK_LOG_OPTIONS_INIT \
  { sizeof(dk_log_options), NULL, 0, NULL, false, false, 0 }

/// A log that runs.
typedef struct dk_log dk_log;
/// On the log's thread.
typedef void (*dk_on_record)(void* user, const dk_log_record* record);
/// On the log's thread. Once, last: why the log ended. ::DK_OK: as asked (dk_log_stop(), stop_at_end); error is null then,
/// and where memory ran out.
typedef void (*dk_on_log_end)(void* user, dk_code code, const dk_error* error);
/// Returns once the phone has taken the order; records come on a thread of the log. None that is logged after it has returned is
/// missed, also with `only_new`, which asks the phone for its time first.
/// @param[in]  device    The device, which must outlive the log.
/// @param[in]  options   May be null, which is #DK_LOG_OPTIONS_INIT. Copied.
/// @param[in]  on_record Called for each record.
/// @param[in]  on_end    Called at the end: ::DK_CONNECTION_LOST when the phone is unplugged, ::DK_COMMAND_FAILED when its
///                       logcat ended, for example because it does not take a filter. May be null.
/// @param[in]  user      Passed to both; must live until the log has stopped.
/// @param[out] log       The log, to stop with dk_log_stop(), also after its end; null on failure.
/// @param[in]  call      For the start alone. May be null.
/// @retval DK_OK           It runs.
/// @retval DK_UNSUPPORTED  The phone is older than Android 5.
/// @return Otherwise a code of every call.
DK_API dk_code dk_log_start(dk_device* device, const dk_log_options* options, dk_on_record on_record,
                            dk_on_log_end on_end, void* user, dk_log** log, const dk_call* call);
/// Stops and frees. The end is reported before it returns, and no callback runs after it. When it is called from within a
/// callback of the log, none runs after that one: the end is then not reported.
/// @param[in] log The log, which must not be used any more; null is ignored.
DK_API void dk_log_stop(dk_log* log);
/// Empties the phone's log.
/// @param[in] device The device.
/// @param[in] call   See ::dk_call; may be null.
/// @return ::DK_OK, otherwise a code of every call.
DK_API dk_code dk_log_clear(dk_device* device, const dk_call* call);

/// @}
/// @defgroup client_ports Client: ports
/// Addresses of this computer that lead to the phone (forward), and of the phone that lead to this computer (reverse). The adb
/// server keeps them until they are removed or the phone goes.
///
/// Addresses are adb's: `tcp:8080`, `localabstract:NAME`, `localfilesystem:PATH`, `localreserved:NAME`, `jdwp:PID`.
///
/// @code{.c}
/// #include <darokleim/client.h>
///
/// // A port of this computer that leads to the phone's web server.
/// static int open_web_port(dk_device* phone, const dk_call* call) {
///   int port = 0;
///   return dk_forward_add(phone, "tcp:0", "tcp:8080", false, &port, call) == DK_OK ? port : -1;
/// }
/// @endcode
/// @{

/// One mapping. Texts are never null.
typedef struct dk_mapping {
  const char* serial;  ///< of a reverse mapping: empty
  const char* from;    ///< where is listened: this computer for forward, the phone for reverse
  const char* to;      ///< where it connects to
} dk_mapping;
/// False ends the call with ::DK_STOPPED.
typedef bool (*dk_on_mapping)(void* user, const dk_mapping* mapping);

/// Listens on this computer and connects to the phone.
/// @param[in]  device  The device.
/// @param[in]  from    Where to listen. `tcp:0`: the server takes a free port.
/// @param[in]  to      Where to connect to on the phone.
/// @param[in]  replace A mapping that @p from has already is replaced.
/// @param[out] port    The TCP port that is listened on; 0 for other addresses; unchanged on failure. May be null.
/// @param[in]  call    See ::dk_call; may be null.
/// @retval DK_OK              The server listens.
/// @retval DK_ADDRESS_IN_USE  @p from has a mapping, and @p replace is false; or another program listens there.
/// @retval DK_SERVER_REFUSED  An address that the server does not know.
/// @return Otherwise a code of every call.
DK_API dk_code dk_forward_add(dk_device* device, const char* from, const char* to, bool replace, int* port,
                              const dk_call* call);
/// Removes mappings of this computer. Connections that exist go on.
/// @param[in] device The device.
/// @param[in] from   As it was added, with the port that the server chose. Null removes all of this device.
/// @param[in] call   See ::dk_call; may be null.
/// @retval DK_OK              There is no such mapping any more.
/// @retval DK_SERVER_REFUSED  There was none.
/// @return Otherwise a code of every call.
DK_API dk_code dk_forward_remove(dk_device* device, const char* from, const dk_call* call);
/// Lists the mappings of this computer that lead to this device.
/// @param[in] device     The device.
/// @param[in] on_mapping Called for each, before the call returns.
/// @param[in] user       Passed to @p on_mapping.
/// @param[in] call       See ::dk_call; may be null.
/// @retval DK_OK       All were reported.
/// @retval DK_STOPPED  @p on_mapping returned false.
/// @return Otherwise a code of every call.
DK_API dk_code dk_forward_list(dk_device* device, dk_on_mapping on_mapping, void* user, const dk_call* call);

/// Listens on the phone and connects to this computer. Since Android 5.
/// @param[in]  device  The device.
/// @param[in]  from    Where the phone listens. `tcp:0`: it takes a free port.
/// @param[in]  to      Where to connect to on this computer, or the one that the adb server runs on.
/// @param[in]  replace A mapping that @p from has already is replaced.
/// @param[out] port    As for dk_forward_add(), of the phone.
/// @param[in]  call    See ::dk_call; may be null.
/// @retval DK_UNSUPPORTED  The phone is older than Android 5.
/// @return Otherwise as dk_forward_add().
DK_API dk_code dk_reverse_add(dk_device* device, const char* from, const char* to, bool replace, int* port,
                              const dk_call* call);
/// Removes mappings of the phone.
/// @param[in] device The device.
/// @param[in] from   As it was added. Null removes all of this device.
/// @param[in] call   See ::dk_call; may be null.
/// @retval DK_UNSUPPORTED  The phone is older than Android 5.
/// @return Otherwise as dk_forward_remove().
DK_API dk_code dk_reverse_remove(dk_device* device, const char* from, const dk_call* call);
/// Lists the mappings of the phone.
/// @param[in] device     The device.
/// @param[in] on_mapping Called for each, before the call returns.
/// @param[in] user       Passed to @p on_mapping.
/// @param[in] call       See ::dk_call; may be null.
/// @retval DK_UNSUPPORTED  The phone is older than Android 5.
/// @return Otherwise as dk_forward_list().
DK_API dk_code dk_reverse_list(dk_device* device, dk_on_mapping on_mapping, void* user, const dk_call* call);

/// @}

#ifdef __cplusplus
}
#endif

#endif  // DAROKLEIM_CLIENT_H

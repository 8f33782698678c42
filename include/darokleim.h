/// @file
/// @brief Manage Android devices over adb, through plain C functions.
///
/// libdarokleim runs Google's `adb` executable for a desktop application and reads what it prints. Every
/// function does one thing with one device: list devices, read properties, list, move and measure files,
/// query and install applications, map ports. Results are a code, plus a flag, a number, a text or a JSON
/// document. The header is valid C11 and C++17.
///
/// ## Starting
///
/// Call AdbSdkInit() once, first, from one thread. There is nothing to shut down.
///
/// @code{.c}
/// #include <darokleim.h>
/// #include <stdio.h>
/// #include <string.h>
///
/// static const char log_context[] = "example";
///
/// int main(void) {
///   int code = AdbSdkInit("/opt/example/tools", log_context, "/tmp");  // tools/ holds adb and busybox
///   if (code != ADB_RESULT_OK) return code;
///
///   char* devices = NULL;
///   int devices_len = 0;
///   code = AdbGetDevicesEx(&devices, &devices_len, NULL);
///   if (code != ADB_RESULT_OK) return code;
///   if (devices == NULL) {
///     puts("no device");
///     return 0;
///   }
///
///   // For example "0123456789ABCDEF-device;FEDCBA9876543210-unauthorized;": take the first serial.
///   devices[strcspn(devices, "-")] = '\0';
///   char model[128];
///   code = AdbGetPhoneProductModel(devices, model, (int)sizeof model, NULL);
///   if (code == ADB_RESULT_OK) {
///     printf("%s is a %s\n", devices, model);
///   } else if (code == ADB_RESULT_DEVICE_UNAUTHORIZED) {
///     printf("%s waits for you to allow USB debugging on its screen\n", devices);
///   } else {
///     printf("%s: error %d\n", devices, code);
///   }
///   AdbFreeResource(&devices);
///   return code;
/// }
/// @endcode
///
/// Build it with `cc example.c $(pkg-config --cflags --libs darokleim)`.
///
/// ## The contract
///
/// **Calls block.** A call returns when its adb command, or the last of several, has ended; only
/// AdbLogcatAnsync() returns at once. The time is not limited, unless `DAROKLEIM_CHANNEL_TIMEOUT=SECONDS` in the
/// environment limits each command (#ADB_CHANNEL_CANCELLED). Do not call from the thread that draws windows.
///
/// **Threads.** After AdbSdkInit() every function may be called from any thread, several at a time, also
/// for one device. Exceptions: AdbLogcatAnsync() not from two threads at once, and AdbKillDaemon() ends the
/// commands of all others.
///
/// **Serial.** The device's serial number as `adb devices` shows it; network addresses (`192.168.1.5:5555`)
/// and emulators (`emulator-5554`) included. Inserted into the command as it is.
///
/// **Cancel flag.** A `const bool*`, mostly the last parameter, or null when the call need not be
/// cancelled. Another thread sets the bool to true while the call runs, best with an atomic store
/// (`__atomic_store_n(&flag, true, __ATOMIC_RELAXED)`); the call then ends its adb process and returns
/// within about 100 ms. The library never writes the flag. It must outlive the call, and be false again
/// before the next one. Changes already made on the device are kept, and no command runs under a flag that is
/// set: a cancelled transfer may leave a partial file, and a function with several steps does not clean up.
///
/// **Pointers.** Unless a function says otherwise, a null pointer gives #ADB_RESULT_INVALID_PARAM before
/// any command runs and before anything is written. Where a pointer is said not to be checked, null is an
/// error of the caller with undefined behaviour. The cancel flag may always be null.
///
/// **Outputs on failure.** Outputs are not changed unless a function says otherwise: initialise them.
///
/// **Blocks.** A `char**` output with its `int*` length receives a block that the library allocated. It
/// belongs to the caller, who frees it with AdbFreeResource(), never with `free`. Blocks end in a zero
/// byte, except those of AdbGetPackagesNameOfInstalled() and AdbGetPackagesNameList(). Each function says
/// whether its length counts that zero. Previous contents of the `char*` are overwritten, not freed.
///
/// **Caller buffers.** A `char*` with an `int` size in bytes, the terminating zero included; at least 1.
/// The buffer receives the text that the device printed, without the spaces, tabs, line breaks and zero bytes
/// at its end. Its length is measured before these are removed, line break included. A text that is
/// - shorter than the buffer is copied completely: #ADB_RESULT_OK;
/// - exactly as long as the buffer loses its last byte, normally the line break: #ADB_RESULT_OK;
/// - longer is cut to size - 1 bytes: #ADB_RESULT_BUFFER_TOO_SMALL, repeat with a larger buffer.
///
/// The buffer should therefore hold the longest value, its line break (at most two bytes) and the zero. A few
/// functions fill buffers differently and say so.
///
/// **Texts are bytes** as the device printed them, in any encoding. JSON documents are pure ASCII:
/// other characters are written as `\u` escapes, and a byte that is not UTF-8 becomes `\ufffd`.
///
/// **Nothing is escaped.** Paths, names and other texts are inserted into the command unchanged. They are not
/// read by a shell of the host, but by the device's shell: a text from an untrusted source can run commands on
/// the device. There are three kinds of paths, and each path parameter names its kind:
/// - a *whole path* may hold anything except a double quote, two consecutive backslashes or a backslash at its
///   end. With assistance (below) these are allowed too, except the sequence of a double quote, a space and a
///   double quote in a path of a function that takes two or more;
/// - a *shell path* is read by the device's shell: with a space, `$`, `&`, `;`, `*`, a quote or a parenthesis
///   the command fails, or does nothing and still succeeds, or works on other files. With assistance it may hold
///   anything, except for `" "/` in AdbCopyFile(): the device's shell can then run the rest of the path;
/// - a *bare path* is a shell path that assistance does not change: use only letters, digits and `/`, `.`,
///   `_`, `-`.
///
/// **Commands are cut silently.** Some functions format their command into a fixed buffer. A longer command is
/// cut and then run, without an error: check the length of long names first. The limit is given as "Command
/// limit" and counts every byte of the command, for example ` -s SERIAL shell pm path NAME`. A function that
/// does not mention a limit does not have one.
///
/// **Errors are codes.** There are two exceptions: when memory runs out, a call throws the C++ exception
/// `std::bad_alloc`, and when a text is too long for the `int` of its length, `std::length_error`.
///
/// ## Result codes
///
/// Every function that returns `int` returns one of the constants of ::AdbResultCode or, unchanged, the
/// *status* of the command channel, which runs adb for the library:
///
/// | status | constant | meaning |
/// |---|---|---|
/// | 0 | | adb ran |
/// | 1000 + N | #ADB_CHANNEL_EXIT_STATUS_BASE | adb or the command on the device failed with exit status N |
/// | 2000 + S | #ADB_CHANNEL_SIGNAL_BASE | signal S ended adb |
/// | 3001 | #ADB_CHANNEL_NOT_INITIALISED | the library is not started |
/// | 3002 | #ADB_CHANNEL_CANNOT_START_ADB | the adb executable cannot be started |
/// | 3003 | #ADB_CHANNEL_CANCELLED | cancelled |
/// | 3005 | #ADB_CHANNEL_OUTPUT_TOO_LONG | more output than an `int` can count |
/// | 3006 | #ADB_CHANNEL_SYSTEM_REFUSED | the system refused a pipe, a process or memory |
/// | 3007 | #ADB_CHANNEL_CONNECTION_BROKEN | the connection broke in the middle of an answer |
///
/// A channel that replaces the library's own can use other numbers. With 3001 to 3007 there is no text, and the
/// status is the result. Otherwise most functions search everything that adb printed for known messages, at any
/// position, in a fixed order: the first match, from the top of the table down, is the result, whatever the
/// status is. Without a match, the status is the result.
///
/// | text | result |
/// |---|---|
/// | `no devices/emulators found` | #ADB_RESULT_NO_DEVICE |
/// | `cannot connect to daemon` | #ADB_RESULT_CANNOT_CONNECT_DAEMON |
/// | `No such file or directory`, `Can't open non-file` | #ADB_RESULT_NO_SUCH_FILE |
/// | `device` with `not found` | #ADB_RESULT_NO_DEVICE |
/// | `error: unknown host service` | #ADB_RESULT_UNKNOWN_HOST_SERVICE |
/// | `[INSTALL_FAILED_ALREADY_EXISTS]` | #ADB_RESULT_INSTALL_ALREADY_EXISTS |
/// | `Failure [-99]` | #ADB_RESULT_INSTALL_FAILURE_99 |
/// | `INSTALL_FAILED_VERSION_DOWNGRADE` | #ADB_RESULT_INSTALL_VERSION_DOWNGRADE |
/// | `[INSTALL_FAILED_USER_RESTRICTED: Install canceled by user]` | #ADB_RESULT_INSTALL_CANCELED_BY_USER |
/// | `[INSTALL_FAILED_CANCELLED_BY_USER]` | #ADB_RESULT_INSTALL_CANCELLED_BY_USER |
/// | `[INSTALL_FAILED_USER_RESTRICTED]` | #ADB_RESULT_INSTALL_USER_RESTRICTED |
/// | `[INSTALL_CANCELED_BY_USER]` | #ADB_RESULT_INSTALL_USER_RESTRICTED |
/// | `[INSTALL_PARSE_FAILED_NO_CERTIFICATES]` | #ADB_RESULT_INSTALL_NO_CERTIFICATES |
/// | `Permission denied` with `grep` or `find:` | #ADB_RESULT_PERMISSION_DENIED |
/// | `Failure` | #ADB_RESULT_FAILURE |
/// | `daemon still not running` | #ADB_RESULT_DAEMON_NOT_RUNNING |
/// | `no closing quote` | #ADB_RESULT_NO_CLOSING_QUOTE |
/// | `/system/bin/sh` with `not found` | #ADB_RESULT_SHELL_NOT_FOUND |
/// | `protocol fault` | #ADB_RESULT_PROTOCOL_FAULT |
/// | `device unauthorized` | #ADB_RESULT_DEVICE_UNAUTHORIZED |
/// | `not enough space` | #ADB_RESULT_NOT_ENOUGH_SPACE |
/// | `Shell does not have permission to access user` | #ADB_RESULT_USER_ACCESS_DENIED |
/// | `No space left on device` | #ADB_RESULT_NO_SPACE_LEFT |
///
/// Names count as text: a listing that holds a file called `Failure.log` gives #ADB_RESULT_FAILURE. A
/// message that is not in the table does not have a code.
///
/// The **common codes** are about the connection rather than the request, and any function may return
/// them: #ADB_RESULT_NO_DEVICE, #ADB_RESULT_DEVICE_UNAUTHORIZED, #ADB_RESULT_CANNOT_CONNECT_DAEMON,
/// #ADB_RESULT_DAEMON_NOT_RUNNING, #ADB_RESULT_UNKNOWN_HOST_SERVICE, #ADB_RESULT_PROTOCOL_FAULT,
/// #ADB_RESULT_SHELL_NOT_FOUND, #ADB_RESULT_NO_CLOSING_QUOTE and every status but 0. Each function lists
/// its other codes. A few functions do not search for messages and return the **status only**.
///
/// **A device that is not ready** gives
///
/// | functions | absent | unauthorized | offline |
/// |---|---|---|---|
/// | most | #ADB_RESULT_NO_DEVICE | #ADB_RESULT_DEVICE_UNAUTHORIZED | 1001 |
/// | those with the status only, AdbCheckAppExist(), AdbUninstallApp() | 1001 | 1001 | 1001 |
/// | AdbGetMiuiVersion() | #ADB_RESULT_MIUI_VERSION_NAME_FAILED | the same | the same |
/// | AdbGetApkPathOfInstatlledEx() | #ADB_RESULT_NOT_FOUND | the same | the same |
/// | AdbClearLogcat(), the stream of AdbLogcatAnsync() | waits until it is cancelled | the same | the same |
/// | AdbAuthenticateShow() | #ADB_RESULT_NO_DEVICE | 1: asked | 1: asked |
///
/// With `DAROKLEIM_CHANNEL=direct` the log functions do not wait: AdbClearLogcat() gives the codes of the first row,
/// the stream ends with 1001. AdbRestoreApp() gives 1255 offline. AdbGetDevices() does not list an absent device.
///
/// **A connection that breaks** while a device answers is not always an error: adb prints what has arrived and
/// reports success. A listing or a text can then be cut although the code is #ADB_RESULT_OK. A broken transfer is
/// always reported, and with `DAROKLEIM_CHANNEL=direct` a broken answer too (#ADB_CHANNEL_CONNECTION_BROKEN).
///
/// ## Phones differ
///
/// **Exit status.** Phones with Android 7 or later report that a command such as `cp` or `rm` failed: without a
/// known message the code is 1000 + N. Older phones do not report it: there only a known message is a failure,
/// and any other (`Permission denied`, `Is a directory`) gives #ADB_RESULT_OK.
///
/// **Line breaks.** Android 7 and later end lines in LF, older phones in CR LF. Functions that *read CR LF* or
/// *read LF* work on the other phones only with assistance.
///
/// **Assistance.** With `DAROKLEIM_CHANNEL=assist` in the environment when AdbSdkInit() is called, or with its
/// older name `DAROKLEIM_CHANNEL_ASSIST=1`, the line breaks of every phone are converted to those that each
/// function reads, and shell paths are quoted for the device's shell. Without it, commands and texts are not
/// changed. New applications should set it. `DAROKLEIM_CHANNEL=direct` adds to it: where possible, the library
/// speaks to the adb server itself, and reports an answer that breaks off.
///
/// ## Log files
///
/// The library writes `adb_sdk.log` and, for each adb command, a line in `adb_channel.log` into the log
/// directory. `DAROKLEIM_LOG_LEVEL` in the environment sets the lowest level written: 0 trace, 1 progress
/// (the default), 2 command lines, 3 errors.

#ifndef DAROKLEIM_INCLUDE_DAROKLEIM_H
#define DAROKLEIM_INCLUDE_DAROKLEIM_H

/// The version of the library that this header belongs to.
#define DAROKLEIM_VERSION "2.0.109"
/// The first part of the version.
#define DAROKLEIM_VERSION_MAJOR 2
/// The second part of the version.
#define DAROKLEIM_VERSION_MINOR 0
/// The third part of the version.
#define DAROKLEIM_VERSION_PATCH 109
/// The version as one number, to compare: `#if DAROKLEIM_VERSION_NUMBER >= 2000109`.
#define DAROKLEIM_VERSION_NUMBER \
  (DAROKLEIM_VERSION_MAJOR * 1000000 + DAROKLEIM_VERSION_MINOR * 1000 + DAROKLEIM_VERSION_PATCH)

#ifdef __cplusplus
#include <string>
#else
#include <stdbool.h>
#endif

/// Marks a function as one that the library exports.
#if defined(__GNUC__)
#define DAROKLEIM_EXPORT __attribute__((visibility("default")))
#else
#define DAROKLEIM_EXPORT
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// What a function returns unless it is a status of the command channel. The numbers never change; missing
/// numbers are never returned. Each comment says what to do about the code.
enum AdbResultCode {
  /// Success.
  ADB_RESULT_OK = 0,
  /// The connection to adb or to the device broke: try again. Some functions also return it for output
  /// that they cannot read, and say so.
  ADB_RESULT_PROTOCOL_FAULT = 1,
  /// The JSON argument cannot be read.
  ADB_RESULT_JSON_PARSE_FAILED = 3,
  /// A required pointer is null, or a required argument is empty.
  ADB_RESULT_INVALID_PARAM = 4,
  /// The resource directory lacks adb or busybox: repair the installation and start the application again.
  ADB_RESULT_RESOURCE_INCOMPLETE = 6,
  /// The caller's buffer is too small: repeat with a larger one.
  ADB_RESULT_BUFFER_TOO_SMALL = 8,
  /// No device, or none with this serial: list the devices again.
  ADB_RESULT_NO_DEVICE = 24,
  /// The path does not exist on the device or on the host, or it is not a regular file.
  ADB_RESULT_NO_SUCH_FILE = 25,
  /// The running adb server is older than adb and does not know the request: AdbRestartDaemon().
  ADB_RESULT_UNKNOWN_HOST_SERVICE = 26,
  /// adb cannot reach its server: AdbStartDaemon().
  ADB_RESULT_CANNOT_CONNECT_DAEMON = 27,
  /// The device answered, but the answer does not contain the requested value.
  ADB_RESULT_NOT_FOUND = 28,
  /// The search found nothing, and the device refused to search some folders.
  ADB_RESULT_PERMISSION_DENIED = 29,
  /// The device has no Wi-Fi address: Wi-Fi is off or not connected.
  ADB_RESULT_NO_IP_ADDRESS = 30,
  /// adb or the package manager reported "Failure" for a reason that does not have a code; the text is in
  /// adb_sdk.log.
  ADB_RESULT_FAILURE = 31,
  /// The package is installed already: uninstall it first.
  ADB_RESULT_INSTALL_ALREADY_EXISTS = 32,
  /// The package manager failed with its code -99.
  ADB_RESULT_INSTALL_FAILURE_99 = 33,
  /// A newer version of the package is installed: uninstall it first, which deletes its data.
  ADB_RESULT_INSTALL_VERSION_DOWNGRADE = 34,
  /// The device does not allow installing over USB, or the install was refused on its screen: have the user
  /// allow it in the developer options.
  ADB_RESULT_INSTALL_USER_RESTRICTED = 35,
  /// The APK is not signed.
  ADB_RESULT_INSTALL_NO_CERTIFICATES = 36,
  /// The adb server could not be started; something else may hold its TCP port 5037.
  ADB_RESULT_DAEMON_NOT_RUNNING = 37,
  /// The user cancelled the install on a device that restricts installing over USB.
  ADB_RESULT_INSTALL_CANCELED_BY_USER = 38,
  /// The user cancelled the install.
  ADB_RESULT_INSTALL_CANCELLED_BY_USER = 39,
  /// The device's shell could not read the command: an argument holds an unmatched quote.
  ADB_RESULT_NO_CLOSING_QUOTE = 40,
  /// The device's shell, or the tool that the command needs, is missing on the device.
  ADB_RESULT_SHELL_NOT_FOUND = 41,
  /// The device does not trust this host yet: ask the user to allow USB debugging, AdbAuthenticateShow()
  /// makes the device ask again.
  ADB_RESULT_DEVICE_UNAUTHORIZED = 42,
  /// Not enough space on the device: have the user free some.
  ADB_RESULT_NOT_ENOUGH_SPACE = 43,
  /// The build date or the build number of MIUI could not be read or is not valid; also on phones without
  /// MIUI.
  ADB_RESULT_MIUI_TIME_CODE_FAILED = 44,
  /// The version name of MIUI could not be read.
  ADB_RESULT_MIUI_VERSION_NAME_FAILED = 45,
  /// adb's shell may not act for this user of the device.
  ADB_RESULT_USER_ACCESS_DENIED = 46,
  /// The storage of the device is full: have the user free some.
  ADB_RESULT_NO_SPACE_LEFT = 47
};

/// The statuses of the command channel, which functions return unchanged. The numbers never change.
enum AdbChannelStatus {
  /// 1000 + N: adb, or the command on the device, failed with exit status N (1 to 255). The device's text, in
  /// adb_sdk.log, says why.
  ADB_CHANNEL_EXIT_STATUS_BASE = 1000,
  /// 2000 + S: the signal S ended adb; another program killed it, or it crashed.
  ADB_CHANNEL_SIGNAL_BASE = 2000,
  /// The library is not started: AdbSdkInit() was not called, or it returned #ADB_RESULT_RESOURCE_INCOMPLETE.
  ADB_CHANNEL_NOT_INITIALISED = 3001,
  /// The adb executable cannot be started: it is missing, is not executable or is for another processor. Also
  /// when the command is longer than the host allows.
  ADB_CHANNEL_CANNOT_START_ADB = 3002,
  /// The cancel flag was set, or the time limit of the environment has passed.
  ADB_CHANNEL_CANCELLED = 3003,
  /// adb printed more bytes than an `int` can count.
  ADB_CHANNEL_OUTPUT_TOO_LONG = 3005,
  /// The system refused a pipe, a process or memory: close files or end other calls, then try again.
  ADB_CHANNEL_SYSTEM_REFUSED = 3006,
  /// The connection to the device or to the adb server broke in the middle of an answer: try again. Only a
  /// channel that speaks to the adb server itself reports it; adb does not report how an answer ended.
  ADB_CHANNEL_CONNECTION_BROKEN = 3007
};

/// @defgroup start Start and release
/// @{

/// Starts the library. Call it once, before any other function, from one thread.
///
/// Later calls with three arguments return #ADB_RESULT_OK and change nothing, other directories included.
/// The same is true after #ADB_RESULT_RESOURCE_INCOMPLETE: every command then gives the status 3001, and only a
/// new process can start the library. When the log file cannot be opened, the library prints one line on
/// standard output and works without a log.
///
/// @param[in] resource_dir  Host directory that holds the executables `adb` (for the host) and `busybox`
///                          (for the device).
/// @param[in] log_context   Any pointer but null, valid as long as the process; passed to the command channel
///                          and the log library, and not used otherwise.
/// @param[in] log_dir       Existing host directory for the log files.
/// @retval ADB_RESULT_OK                   Started, or started before.
/// @retval ADB_RESULT_INVALID_PARAM        An argument is null; the library is as before.
/// @retval ADB_RESULT_RESOURCE_INCOMPLETE  `adb` or `busybox` is missing.
DAROKLEIM_EXPORT int AdbSdkInit(const char* resource_dir, const void* log_context, const char* log_dir);

/// Frees a block of the library, and sets the caller's pointer to null.
///
/// @param[in,out] buffer  Address of the pointer to the block; not checked for null. The pointer itself may
///                        be null; the call then has no effect.
DAROKLEIM_EXPORT void AdbFreeResource(char** buffer);

/// @}
/// @defgroup devices Devices
/// @{

/// Lists the attached devices into a buffer of the caller (`adb devices`).
///
/// The list has an entry `SERIAL-STATE;` for each device, in adb's order, where the state is `device` (ready),
/// `offline` or `unauthorized`. Devices in any other state are left out, and so are those whose serial
/// holds anything but ASCII letters and digits: emulators and devices reached over the network.
///
/// A list that does not fit is cut at the end of the buffer, also inside an entry, with #ADB_RESULT_OK: its last
/// entry then has no `;`. AdbGetDevicesEx() never cuts. Without any device to list the buffer is not changed:
/// set its first byte to zero before the call.
///
/// @param[out] buffer       Receives the zero-terminated list.
/// @param[in]  buffer_size  Size of @p buffer in bytes.
/// @param[in]  cancel       Cancel flag.
/// @retval ADB_RESULT_OK             The list, perhaps cut, or nothing to list.
/// @retval ADB_RESULT_INVALID_PARAM  @p buffer is null.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetDevices(char* buffer, int buffer_size, const bool* cancel);

/// Lists the attached devices into a block: the list of AdbGetDevices(), never cut.
///
/// Both outputs are always written: null and 0 on failure and when there is no device to list. Neither
/// pointer is checked for null.
///
/// @param[out] list      Receives the block, or null; free it with AdbFreeResource().
/// @param[out] list_len  Receives the length in bytes, the terminating zero included: 12 for `ABC-device;`.
/// @param[in]  cancel    Cancel flag.
/// @retval ADB_RESULT_OK  The list, or nothing to list.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetDevicesEx(char** list, int* list_len, const bool* cancel);

/// Makes an unauthorized device ask its user again whether to trust this host, by re-opening its connection
/// (`adb -s SERIAL reconnect`). A device that is ready does not ask.
///
/// Returns 1 after a normal run, never 0: treat 1 as success and read the new state with
/// AdbGetDevicesEx(). The device is absent for a moment. Command limit: 255 bytes.
///
/// @param[in] serial  Serial; not checked for null.
/// @param[in] cancel  Cancel flag.
/// @retval ADB_RESULT_PROTOCOL_FAULT  The request was made; also when no text came back, as after a cancel.
/// @return Otherwise a common code. A failure without a known message also gives 1.
DAROKLEIM_EXPORT int AdbAuthenticateShow(const char* serial, const bool* cancel);

/// Re-opens the connection to the attached device (`adb reconnect`, without a serial).
///
/// adb chooses the device, and does nothing when none or several are attached; AdbAuthenticateShow() takes a
/// serial. Cannot be cancelled.
///
/// @return The status only; 0 also when adb had no device to reconnect: it prints a line, but does not fail.
DAROKLEIM_EXPORT int AdbReconnectDevice(void);

/// Restarts a device (`adb reboot`) and returns without waiting for it to come back.
///
/// Command limit: 127 bytes.
///
/// @param[in] serial  Serial.
/// @param[in] cancel  Cancel flag.
/// @retval ADB_RESULT_OK             The device restarts.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial is null.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbReboot(const char* serial, const bool* cancel);

/// @}
/// @defgroup properties Device properties
/// Each call reads one fact about a device, in most cases an Android system property (`getprop NAME`). A
/// property that the device does not have is an empty text. With the status 0 the text is the value, whatever
/// it contains: known messages are only searched for with another status. (AdbGetIPAddress(),
/// AdbGetDeviceCurrentTime() and IsDeviceHadBeenRooted(), which do not read a property, always search for
/// them.) Command limit of all: 255 bytes.
/// @{

/// Reads the manufacturer (`ro.product.manufacturer`), for example `Xiaomi`.
///
/// @param[in]  serial       Serial.
/// @param[out] buffer       Receives the text (see Caller buffers); unchanged on failure.
/// @param[in]  buffer_size  Size of @p buffer in bytes; 128 is enough.
/// @param[in]  cancel       Cancel flag.
/// @retval ADB_RESULT_OK                The text, empty when the device has no such property.
/// @retval ADB_RESULT_INVALID_PARAM     @p serial or @p buffer is null.
/// @retval ADB_RESULT_BUFFER_TOO_SMALL  The text was cut.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetPhoneManufacturer(const char* serial, char* buffer, int buffer_size,
                                             const bool* cancel);

/// Reads the Android release (`ro.build.version.release`), for example `13` or `6.0.1`. Parameters and
/// results as for AdbGetPhoneManufacturer().
///
/// @param[in]  serial       Serial.
/// @param[out] buffer       Receives the text.
/// @param[in]  buffer_size  Size of @p buffer in bytes.
/// @param[in]  cancel       Cancel flag.
/// @return As AdbGetPhoneManufacturer().
DAROKLEIM_EXPORT int AdbGetPhoneSoftVersion(const char* serial, char* buffer, int buffer_size,
                                            const bool* cancel);

/// Reads the model (`ro.product.model`), for example `Pixel 7`. Parameters and results as for
/// AdbGetPhoneManufacturer().
///
/// @param[in]  serial       Serial.
/// @param[out] buffer       Receives the text.
/// @param[in]  buffer_size  Size of @p buffer in bytes.
/// @param[in]  cancel       Cancel flag.
/// @return As AdbGetPhoneManufacturer().
DAROKLEIM_EXPORT int AdbGetPhoneProductModel(const char* serial, char* buffer, int buffer_size,
                                             const bool* cancel);

/// Reads the region that a MIUI build was made for (`ro.miui.build.region`), for example `eu`; empty on
/// other phones. Parameters and results as for AdbGetPhoneManufacturer().
///
/// @param[in]  serial       Serial.
/// @param[out] buffer       Receives the text.
/// @param[in]  buffer_size  Size of @p buffer in bytes.
/// @param[in]  cancel       Cancel flag.
/// @return As AdbGetPhoneManufacturer().
DAROKLEIM_EXPORT int AdbGetMiuiBuildRegin(const char* serial, char* buffer, int buffer_size,
                                          const bool* cancel);

/// Composes the version of MIUI as dotted numbers.
///
/// The source depends on the version name (`ro.miui.ui.version.name`):
/// - below 101, such as `V12`: the name's number, then the build date of `ro.miui.version.code_time` in UTC
///   as year - 2010, month, day of the month + 1. `V11` built on 2020-03-15 gives `11.10.3.16`. Reads CR
///   LF: on other phones the line feed after the name stays inside the text.
/// - 101 and above, such as `V130`: the part of `ro.build.version.incremental` from its first `V`, or from its
///   start when it does not hold one, to its last dot. `V13.0.4.0.SKHMIXM` gives `13.0.4.0`.
///
/// A version that holds `12.` at any position is cut one character after its third dot: `12.0.5.10` gives
/// `12.0.5.1`.
///
/// @param[in]  serial       Serial.
/// @param[out] buffer       Receives the version (see Caller buffers); unchanged on failure.
/// @param[in]  buffer_size  Size of @p buffer in bytes; give 128 or more.
/// @param[in]  cancel       Cancel flag.
/// @retval ADB_RESULT_OK                        The version; when it is empty the buffer is not changed.
/// @retval ADB_RESULT_INVALID_PARAM             @p serial or @p buffer is null.
/// @retval ADB_RESULT_BUFFER_TOO_SMALL          The version was cut.
/// @retval ADB_RESULT_MIUI_VERSION_NAME_FAILED  The version name could not be read, for any reason: also for an
///                                              absent device and a cancelled call.
/// @retval ADB_RESULT_MIUI_TIME_CODE_FAILED     The same for the second property, or its value is not a date
///                                              or version; the usual result on a phone without MIUI.
DAROKLEIM_EXPORT int AdbGetMiuiVersion(const char* serial, char* buffer, int buffer_size, const bool* cancel);

/// Checks whether the boot loader is locked (`ro.boot.flash.locked`).
///
/// No pointer is checked for null.
///
/// @param[in]  serial  Serial.
/// @param[out] locked  Receives the answer; unchanged on failure, and when the device does not report it
///                     (the code is #ADB_RESULT_OK).
/// @param[in]  cancel  Cancel flag.
/// @retval ADB_RESULT_OK  The property was read.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbCheckLockedState(const char* serial, bool* locked, const bool* cancel);

/// Checks whether the user data is encrypted (`ro.crypto.state`).
///
/// No pointer is checked for null.
///
/// @param[in]  serial     Serial.
/// @param[out] encrypted  Receives the answer; unchanged on failure, and when the device does not report it
///                        (the code is #ADB_RESULT_OK).
/// @param[in]  cancel     Cancel flag.
/// @retval ADB_RESULT_OK  The property was read.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbCheckEncryptState(const char* serial, bool* encrypted, const bool* cancel);

/// Reads how the user data is encrypted (`ro.crypto.type`).
///
/// No pointer is checked for null.
///
/// @param[in]  serial  Serial.
/// @param[out] type    Receives 0 (file by file) or 1 (the whole disk); unchanged on failure, and when the
///                     device reports neither (the code is #ADB_RESULT_OK): start from -1.
/// @param[in]  cancel  Cancel flag.
/// @retval ADB_RESULT_OK  The property was read.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetEncryptType(const char* serial, int* type, const bool* cancel);

/// Checks whether the device runs HarmonyOS, by the name of its ring tone (`ro.config.ringtone`).
///
/// No pointer is checked for null.
///
/// @param[in]  serial      Serial.
/// @param[out] is_harmony  Receives the answer; false on failure.
/// @param[in]  cancel      Cancel flag.
/// @retval ADB_RESULT_OK  The property was read.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbCheckIsHarmony(const char* serial, bool* is_harmony, const bool* cancel);

/// Checks whether the device is rooted: whether `/system/bin/su` or `/system/xbin/su` exists (`ls`).
///
/// Every answer without "No such file" in its first 255 bytes means that the file exists: also a refusal and an
/// empty answer. When the query for the first path fails, the second alone decides.
///
/// @param[in]  serial  Serial.
/// @param[out] rooted  Receives the answer; false on failure. Not checked for null.
/// @param[in]  cancel  Cancel flag.
/// @retval ADB_RESULT_OK             The answer.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial is null.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int IsDeviceHadBeenRooted(const char* serial, bool* rooted, const bool* cancel);

/// Reads the IPv4 address of the device in its Wi-Fi network (`ip address`).
///
/// The first address of a wlan interface only. @p ip and @p ip_len are not checked for null.
///
/// @param[in]  serial  Serial.
/// @param[out] ip      Receives a block with address and prefix length, for example `192.168.1.5/24`; free
///                     it with AdbFreeResource().
/// @param[out] ip_len  Receives the length in bytes without the terminating zero.
/// @param[in]  cancel  Cancel flag.
/// @retval ADB_RESULT_OK             The address.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial is null.
/// @retval ADB_RESULT_NO_IP_ADDRESS  The device has no such address.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetIPAddress(const char* serial, char** ip, int* ip_len, const bool* cancel);

/// Reads the clock of the device (`date`), as `YYYY-MM-DD HH:MM:SS` in the device's time zone.
///
/// @param[in]  serial       Serial.
/// @param[out] buffer       Receives the text (see Caller buffers); empty on failure.
/// @param[in]  buffer_size  Size of @p buffer in bytes; 22 or more.
/// @param[in]  cancel       Cancel flag.
/// @retval ADB_RESULT_OK                The time.
/// @retval ADB_RESULT_INVALID_PARAM     @p serial or @p buffer is null.
/// @retval ADB_RESULT_BUFFER_TOO_SMALL  The text was cut.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetDeviceCurrentTime(const char* serial, char* buffer, int buffer_size,
                                             const bool* cancel);

/// @}
/// @defgroup files Files
/// Transfers between host and device, and operations on one file of the device. The functions do not retry, and
/// do not clean up after a failure.
/// @{

/// Copies a file from the host to the device (`adb push --sync`), and its modification time.
///
/// A file is skipped when the device has one with **the same modification time**, in seconds, whatever the size
/// and the content: two versions of one second are taken for the same. In every other case the device's file is
/// replaced, also by an older one. With a directory, its files and directories are copied; empty directories
/// are not.
///
/// @param[in] serial       Serial.
/// @param[in] host_path    File or directory to copy; a whole path.
/// @param[in] device_path  File to write, or an existing directory to copy into; a whole path. For a directory
///                         as @p host_path: the new directory, or an existing one to copy it into.
/// @param[in] cancel       Cancel flag.
/// @retval ADB_RESULT_OK             Copied, or skipped.
/// @retval ADB_RESULT_INVALID_PARAM  A text is null.
/// @retval ADB_RESULT_NO_SUCH_FILE   Either path does not exist.
/// @retval ADB_RESULT_NO_SPACE_LEFT  The storage is full; part of the file may be there.
/// @return Otherwise a common code; 1001 when the device does not allow writing there.
DAROKLEIM_EXPORT int AdbPushFile(const char* serial, const char* host_path, const char* device_path,
                                 const bool* cancel);

/// Copies one file from the device to the host, with its time and mode (`adb pull -a`).
///
/// For one file. A directory is copied too, with everything in it, but the result is 0 only when it holds exactly
/// one file; otherwise it is 1.
///
/// @param[in] serial       Serial.
/// @param[in] device_path  File to copy; a whole path.
/// @param[in] host_path    File or existing directory to copy to; a whole path.
/// @param[in] cancel       Cancel flag.
/// @retval ADB_RESULT_OK              Copied.
/// @retval ADB_RESULT_INVALID_PARAM   A text is null.
/// @retval ADB_RESULT_NO_SUCH_FILE    @p device_path, or the directory of @p host_path, does not exist.
/// @retval ADB_RESULT_PROTOCOL_FAULT  adb did not report that it copied one file.
/// @return Otherwise a common code; 1001 when reading or writing is not allowed, or the connection broke.
DAROKLEIM_EXPORT int AdbPullFile(const char* serial, const char* device_path, const char* host_path,
                                 const bool* cancel);

/// Copies a file on the device (`cp`). An existing file is replaced.
///
/// @param[in] serial       Serial.
/// @param[in] source       File to copy; a shell path, without `" "/` in it.
/// @param[in] destination  File or existing directory to copy to; a shell path, without `" "/` in it.
/// @param[in] cancel       Cancel flag.
/// @retval ADB_RESULT_OK             Copied.
/// @retval ADB_RESULT_INVALID_PARAM  A text is null.
/// @retval ADB_RESULT_NO_SUCH_FILE   @p source, or the directory of @p destination, does not exist.
/// @retval ADB_RESULT_NO_SPACE_LEFT  The storage is full.
/// @return Otherwise a common code; 1001 when the device does not allow it (Android 7 or later).
DAROKLEIM_EXPORT int AdbCopyFile(const char* serial, const char* source, const char* destination,
                                 const bool* cancel);

/// Deletes a file on the device (`rm`). Directories are not deleted.
///
/// @param[in] serial       Serial.
/// @param[in] device_path  File to delete; a shell path.
/// @param[in] cancel       Cancel flag.
/// @retval ADB_RESULT_OK             Deleted.
/// @retval ADB_RESULT_INVALID_PARAM  A text is null.
/// @retval ADB_RESULT_NO_SUCH_FILE   There is no such file.
/// @return Otherwise a common code; 1001 for a directory or when the device does not allow it (Android 7 or
///         later).
DAROKLEIM_EXPORT int AdbRemoveFile(const char* serial, const char* device_path, const bool* cancel);

/// Renames or moves a file or directory on the device (`mv`). An existing file is replaced.
///
/// The paths reach the device in single quotes and may hold anything except a single quote, a double quote or two
/// consecutive backslashes. With assistance, anything except ``'" "'/``, as in AdbCopyFile().
///
/// @param[in] serial    Serial.
/// @param[in] old_path  What to rename.
/// @param[in] new_path  New path, or an existing directory to move into.
/// @param[in] cancel    Cancel flag.
/// @retval ADB_RESULT_OK             Renamed.
/// @retval ADB_RESULT_INVALID_PARAM  A text is null.
/// @retval ADB_RESULT_NO_SUCH_FILE   @p old_path, or the directory of @p new_path, does not exist.
/// @return Otherwise a common code; 1001 when the device does not allow it (Android 7 or later).
DAROKLEIM_EXPORT int AdbRenameFile(const char* serial, const char* old_path, const char* new_path,
                                   const bool* cancel);

/// Creates a directory on the device, and the directories above it (`mkdir -p`). An existing directory is not an
/// error.
///
/// No pointer is checked for null.
///
/// @param[in] serial       Serial.
/// @param[in] device_path  Directory to create; a shell path.
/// @param[in] cancel       Cancel flag.
/// @retval ADB_RESULT_OK  Created, or existed already.
/// @return Otherwise a common code; 1001 when the device does not allow it (Android 7 or later).
DAROKLEIM_EXPORT int AdbCreateDir(const char* serial, const char* device_path, const bool* cancel);

/// Changes the mode of a file or directory on the device (`chmod`).
///
/// @param[in] serial       Serial.
/// @param[in] device_path  File or directory; a bare path.
/// @param[in] mode         Mode as for `chmod`, for example `644` or `a+x`.
/// @param[in] cancel       Cancel flag.
/// @retval ADB_RESULT_OK             Changed.
/// @retval ADB_RESULT_INVALID_PARAM  A text is null.
/// @retval ADB_RESULT_NO_SUCH_FILE   The path does not exist.
/// @return Otherwise a common code; 1001 when the device does not allow it (Android 7 or later).
DAROKLEIM_EXPORT int AdbChmodFile(const char* serial, const char* device_path, const char* mode,
                                  const bool* cancel);

/// Checks whether a file or directory exists on the device (`ls`, then `adb ls` of its parent directory).
///
/// Pass a directory without a slash at its end: with one, only an empty directory is always found. The answer is
/// valid only with #ADB_RESULT_OK: a command that could not be run (3001 to 3007) sets it to true.
///
/// @param[in]  serial       Serial.
/// @param[in]  device_path  Absolute path; a shell path to `ls`, a whole path to `adb ls`.
/// @param[out] exists       Receives the answer.
/// @param[in]  cancel       Cancel flag.
/// @retval ADB_RESULT_OK             The answer, true or false.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial, @p device_path or @p exists is null.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbCheckFileExisted(const char* serial, const char* device_path, bool* exists,
                                         const bool* cancel);

/// Reads the size of a file on the device (`stat`). Reads CR LF.
///
/// @param[in]  serial       Serial.
/// @param[in]  device_path  File; a shell path.
/// @param[out] size         Receives the size in bytes; 0 on failure. Not checked for null.
/// @param[in]  cancel       Cancel flag.
/// @retval ADB_RESULT_OK              The size.
/// @retval ADB_RESULT_INVALID_PARAM   @p serial or @p device_path is null.
/// @retval ADB_RESULT_NO_SUCH_FILE    There is no such file.
/// @retval ADB_RESULT_PROTOCOL_FAULT  `stat` printed no size, or lines that end in LF.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetFileSize(const char* serial, const char* device_path, unsigned long long* size,
                                    const bool* cancel);

/// Reads when a file on the device was last modified, in spite of the function's name (`stat -c %Y`; on a device
/// without `stat`, `adb ls` of its parent directory, as AdbGetFileCreateTimeFromLs()).
///
/// @param[in]  serial       Serial.
/// @param[in]  device_path  Absolute path of the file; a shell path.
/// @param[out] seconds      Receives the seconds since 1970-01-01 00:00 UTC; 0 on failure.
/// @param[in]  cancel       Cancel flag.
/// @retval ADB_RESULT_OK             The time; without `stat` also 0 for a file that was not found.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial, @p device_path or @p seconds is null.
/// @retval ADB_RESULT_NO_SUCH_FILE   There is no such file.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetFileCreateTime(const char* serial, const char* device_path,
                                          unsigned long long* seconds, const bool* cancel);

/// Takes a screenshot and copies it to the host as a PNG file.
///
/// The picture is first written to `/data/local/tmp/`, under the file name of @p host_path: two simultaneous calls
/// must not use the same name. A name with a space needs assistance. **The picture stays on the device** when the
/// call is cancelled or the copy fails, until AdbRemoveFile() removes it.
///
/// @param[in] serial     Serial.
/// @param[in] host_path  File to write; a whole path, with a file name at its end.
/// @param[in] cancel     Cancel flag.
/// @retval ADB_RESULT_OK             The file is written.
/// @retval ADB_RESULT_INVALID_PARAM  A text is null, or @p host_path ends in a slash.
/// @return Otherwise the code of the step that failed: AdbScreencapToDevice(), AdbPullFile() or
///         AdbRemoveFile(); in the last case the host's file has been written.
DAROKLEIM_EXPORT int AdbScreencapToPC(const char* serial, const char* host_path, const bool* cancel);

/// Takes a screenshot into a PNG file on the device (`screencap -p`).
///
/// @param[in] serial       Serial.
/// @param[in] device_path  File to write; a shell path.
/// @param[in] cancel       Cancel flag.
/// @retval ADB_RESULT_OK             The file is written.
/// @retval ADB_RESULT_INVALID_PARAM  A text is null.
/// @return Otherwise a common code; 1001 when the device does not allow it (Android 7 or later).
DAROKLEIM_EXPORT int AdbScreencapToDevice(const char* serial, const char* device_path, const bool* cancel);

/// @}
/// @defgroup directories Directories
/// The listings are JSON documents. Each listing is also written to a file named `F:\file_list.json` in the
/// current working directory (not on a drive), which replaces the one before. Only a regular file is written: a
/// link or anything else of that name is left unchanged, and errors are ignored.
///
/// The number of files and the depth of folders are not limited: time and memory are proportional to the
/// document, and no additional stack is needed. A million files take about 500 MB and a few seconds, without the
/// device's time. In the tree each folder indents its lines by six more spaces, and every level repeats the path
/// above it: a deep tree makes a document that is much larger than its listing.
///
/// **A listing can be incomplete without an error.** A directory that may not be read is empty. When the connection
/// breaks in the middle of a listing, the files that had arrived are returned with #ADB_RESULT_OK: adb does not
/// report it (`DAROKLEIM_CHANNEL=direct` does).
///
/// **A link to a directory**, as `/sdcard` on most devices, is not a directory for `ls -l` and `du`: they print the
/// link itself, so that AdbGetDirFiles() of `/sdcard` is an empty list and AdbGetDirSize() is 0, both with
/// #ADB_RESULT_OK. Use `/sdcard/`, with a slash at the end. The other functions here follow such a link.
///
/// A flat listing (line breaks left out):
///
/// @code{.json}
/// {
///    "file_count" : 1,
///    "files" : [ { "file" : "/sdcard/a.txt", "size" : 10,
///                  "time" : "2019-12-31 16:40:48", "utc_timestamp" : 1577810448 } ]
/// }
/// @endcode
///
/// `files` is null, not an empty array, when there are no files.
///
/// Listings are read line by line: a file with a line feed in its name is missing or split.
/// @{

/// Lists the regular files of a directory with the device's `ls -l`. Reads CR LF: on other phones the list is
/// empty.
///
/// Each file has `file`, `size` (bytes) and `time` (`YYYY-MM-DD HH:MM` in the device's time zone). Without
/// @p recursive the device does not print the directory: `file` is `/` and the name alone. Spaces at the
/// beginning of a name are lost. **A listing of a single line is empty**: on phones whose `ls -l` does not print a
/// total (many before Android 7) a directory needs two entries. A line for a file that cannot be parsed is
/// skipped and printed to standard output, unescaped: redirect standard output when a terminal shows it. No
/// pointer is checked for null.
///
/// @param[in]  serial     Serial.
/// @param[in]  dir        Directory, with a slash at its end when it is a link; a shell path.
/// @param[out] json       Receives a block with the flat listing; free it with AdbFreeResource(). Unchanged
///                        on failure.
/// @param[out] json_len   Receives its length in bytes without the terminating zero; unchanged on failure.
/// @param[in]  recursive  Not 0: the directories below as well (`-R`).
/// @param[in]  all        Not 0: names that begin with a dot as well (`-a`).
/// @param[in]  cancel     Cancel flag.
/// @retval ADB_RESULT_OK            The listing; empty for a directory that may not be read.
/// @retval ADB_RESULT_NO_SUCH_FILE  The directory does not exist, or a file was deleted during the listing;
///                                  no listing is returned.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetDirFiles(const char* serial, const char* dir, char** json, int* json_len,
                                    int recursive, int all, const bool* cancel);

/// Lists all files below a directory with adb's own directory service, one `adb ls` for each directory.
///
/// Independent of the phone's shell and of line breaks. Each file has `file`, `size` (bytes), `time`
/// (`YYYY-MM-DD HH:MM:SS` in the host's time zone) and `utc_timestamp` (seconds since 1970). Always
/// recursive; symbolic links below @p dir are listed as files and not followed, @p dir itself may be a link.
/// Names of two characters with a dot (`.a`) are missing. Older adb releases count sizes in 32 bits. No pointer
/// is checked for null.
///
/// The number of directories is not limited: a device that always reports one more folder keeps the call busy
/// until it is cancelled. Pass a cancel flag for a device that is not trusted.
///
/// @param[in]  serial     Serial.
/// @param[in]  dir        Directory; a whole path. A slash at its end is doubled in each `file`.
/// @param[out] json       Receives a block with the flat listing; free it with AdbFreeResource(). Unchanged
///                        on failure.
/// @param[out] json_len   Receives its length in bytes without the terminating zero; unchanged on failure.
/// @param[in]  recursive  Ignored.
/// @param[in]  all        Ignored.
/// @param[in]  cancel     Cancel flag.
/// @retval ADB_RESULT_OK  The listing. Empty for a directory that does not exist or may not be read: adb does not
///                        report it.
/// @return Otherwise the status only.
DAROKLEIM_EXPORT int AdbGetDirFilesEx(const char* serial, const char* dir, char** json, int* json_len,
                                      int recursive, int all, const bool* cancel);

/// Lists all files below a directory as a tree of folders, otherwise like AdbGetDirFilesEx().
///
/// A folder has `Name`, and when there are any, `Dir` (its folders) and `File` (its files); a file has
/// `Name`, `Size` and `Time`. Names are full paths. Folders without a file anywhere below them are missing.
///
/// @code{.json}
/// {
///    "Dir" : [ { "File" : [ { "Name" : "/sdcard/a/x.jpg", "Size" : 7, "Time" : "2020-01-02 03:04:05" } ],
///                "Name" : "/sdcard/a" } ],
///    "Name" : "/sdcard"
/// }
/// @endcode
///
/// @param[in]  serial     Serial.
/// @param[in]  dir        Directory, the `Name` of the topmost folder; a whole path.
/// @param[out] json       Receives a block with the tree; free it with AdbFreeResource(). Untouched on
///                        failure.
/// @param[out] json_len   Receives its length in bytes without the terminating zero; unchanged on failure.
/// @param[in]  recursive  Ignored.
/// @param[in]  all        Ignored.
/// @param[in]  cancel     Cancel flag.
/// @return As AdbGetDirFilesEx().
DAROKLEIM_EXPORT int AdbGetDirFilesAndDirs(const char* serial, const char* dir, char** json, int* json_len,
                                           int recursive, int all, const bool* cancel);

/// Finds the files below a directory whose names end in one of several suffixes, in any case (`find`, or
/// `du` and `grep` on a device without `/system/bin/find`).
///
/// Each file has `file` only. @p json and @p json_len are not checked for null and always written: null and
/// 0 without a listing. @p suffixes is not checked for null. Command limit: 1023 bytes; the
/// search with `du` and `grep` does not have one.
///
/// @param[in]  serial    Serial.
/// @param[in]  dir       Directory; a bare path.
/// @param[in]  suffixes  Suffixes without the dot, separated by `;`, at least one: `jpg;png`.
/// @param[out] json      Receives a block with the flat listing; free it with AdbFreeResource().
/// @param[out] json_len  Receives its length in bytes without the terminating zero.
/// @param[in]  cancel    Cancel flag.
/// @retval ADB_RESULT_OK                 The listing. When nothing was found: null in @p json, or an empty listing.
/// @retval ADB_RESULT_INVALID_PARAM      @p serial or @p dir is null, or @p dir is empty.
/// @retval ADB_RESULT_NO_SUCH_FILE       The directory does not exist.
/// @retval ADB_RESULT_PERMISSION_DENIED  Nothing was found, and some folders could not be searched; the
///                                       listing is empty. When files were found, refused folders are ignored.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetFilesBySuffix(const char* serial, const char* dir, const char* suffixes,
                                         char** json, int* json_len, const bool* cancel);

/// Measures a directory (`du -s`), after AdbConfigDeviceBusybox().
///
/// A directory with parts that may not be read cannot be measured: the result is 1, or 0 with a size of 0.
///
/// @param[in]  serial  Serial.
/// @param[in]  dir     Directory; a shell path.
/// @param[out] size    Receives the size in the unit of the device's `du`, normally 1024 bytes; 0 on
///                     failure.
/// @param[in]  cancel  Cancel flag.
/// @retval ADB_RESULT_OK              The size.
/// @retval ADB_RESULT_INVALID_PARAM   @p serial, @p dir or @p size is null.
/// @retval ADB_RESULT_NO_SUCH_FILE    The directory, or the host's `busybox`, does not exist.
/// @retval ADB_RESULT_PROTOCOL_FAULT  `du` printed more or less than one size.
/// @return Otherwise a code of AdbConfigDeviceBusybox() or a common code.
DAROKLEIM_EXPORT int AdbGetDirSize(const char* serial, const char* dir, long long* size, const bool* cancel);

/// @}
/// @defgroup storage Storage
/// @{

/// Finds the shared storage of a device: the first of `/sdcard`, `/sdcard0`, `/sdcard1` ... `/sdcard9` that
/// exists (`stat`, once for each).
///
/// @param[in]  serial       Serial.
/// @param[out] buffer       Receives the path; unchanged on failure.
/// @param[in]  buffer_size  Size of @p buffer in bytes; at least 9.
/// @param[in]  cancel       Cancel flag.
/// @retval ADB_RESULT_OK                The path.
/// @retval ADB_RESULT_INVALID_PARAM     @p serial or @p buffer is null.
/// @retval ADB_RESULT_BUFFER_TOO_SMALL  @p buffer_size is below 9; no command was run.
/// @retval ADB_RESULT_NO_SUCH_FILE      None exists.
/// @return Otherwise the common code of the last one tried.
DAROKLEIM_EXPORT int AdbGetFirstSDCardPath(const char* serial, char* buffer, int buffer_size,
                                           const bool* cancel);

/// Reads the free space of the storage that holds a path (`df`).
///
/// A number without a unit is in KiB, as `df` prints it.
///
/// @param[in]  serial      Serial.
/// @param[in]  path        Any path on the storage, for example `/sdcard`; a bare path.
/// @param[out] free_bytes  Receives the free space in bytes; 0 on failure.
/// @param[in]  cancel      Cancel flag.
/// @retval ADB_RESULT_OK              The free space.
/// @retval ADB_RESULT_INVALID_PARAM   @p serial, @p path or @p free_bytes is null.
/// @retval ADB_RESULT_NO_SUCH_FILE    The path does not exist.
/// @retval ADB_RESULT_PROTOCOL_FAULT  `df` did not print a table row.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetStorageFreeSpace(const char* serial, const char* path,
                                            unsigned long long* free_bytes, const bool* cancel);

/// Lists the storage volumes of a device, internal and cards (`ls -l /storage`). Reads LF.
///
/// A volume may be in the list twice. @p paths and @p paths_len are not checked for null. Command limit:
/// 255 bytes.
///
/// @param[in]  serial     Serial.
/// @param[out] paths      Receives a block with a JSON array of paths, for example
///                        `[ "/storage/emulated/0", "/storage/1234-5678" ]`, or `null` when no volume was
///                        recognised; free it with AdbFreeResource(). Unchanged on failure.
/// @param[out] paths_len  Receives its length in bytes without the terminating zero; unchanged on failure.
/// @param[in]  cancel     Cancel flag.
/// @retval ADB_RESULT_OK             The list, perhaps `null`.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial is null.
/// @return Otherwise the status only.
DAROKLEIM_EXPORT int AdbSearchSDCardPath(const char* serial, char** paths, int* paths_len,
                                         const bool* cancel);

/// Finds the memory card of a device (`ls -l /storage`). Reads LF.
///
/// Recognises a card by its group, sdcard_r or sdcard_rw. On newer phones cards have other groups and the path is
/// empty: use the entry of AdbSearchSDCardPath() that is not `/storage/emulated/0`. @p path and
/// @p path_len are not checked for null. Command limit: 255 bytes.
///
/// @param[in]  serial    Serial.
/// @param[out] path      Receives a block with the path, for example `/storage/1234-5678`, or with an empty
///                       text without a card; free it with AdbFreeResource(). Unchanged on failure.
/// @param[out] path_len  Receives its length in bytes without the terminating zero, 0 without a card;
///                       unchanged on failure.
/// @param[in]  cancel    Cancel flag.
/// @retval ADB_RESULT_OK             The path, perhaps empty.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial is null.
/// @return Otherwise the status only.
DAROKLEIM_EXPORT int AdbSearchExternalSDCardPath(const char* serial, char** path, int* path_len,
                                                 const bool* cancel);

/// @}
/// @defgroup packages Installed packages
/// Command limit of each command here: 255 bytes. Package names are read by the device's shell, as a bare
/// path is. Where adb's shell may not act for all users of the device, the first three functions ask for
/// the current user and list that user's packages instead; AdbGetApkPathOfInstatlled() and
/// AdbGetAppVersion() return #ADB_RESULT_USER_ACCESS_DENIED.
/// @{

/// Checks whether a package is installed (`pm list packages`).
///
/// @param[in]  serial     Serial.
/// @param[in]  package    Full package name, for example `com.example.app`; compared exactly.
/// @param[out] installed  Receives the answer; false on failure.
/// @param[in]  cancel     Cancel flag.
/// @retval ADB_RESULT_OK             The answer, true or false. Also false when the device refuses
///                                   the listing, even for the current user.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial, @p package or @p installed is null.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbCheckAppInstalled(const char* serial, const char* package, bool* installed,
                                          const bool* cancel);

/// Lists installed packages as the device prints them: `package:NAME` and a line break for each
/// (`pm list packages FILTER`).
///
/// @p list and @p list_len are not checked for null.
///
/// @param[in]  serial    Serial.
/// @param[in]  filter    Options of `pm list packages`, part of a name, or both: `-3` for what the user
///                       installed, `-f com.example`, an empty text for everything.
/// @param[out] list      Receives a block of @p list_len bytes **without a terminating zero**; free it with
///                       AdbFreeResource(). Unchanged on failure.
/// @param[out] list_len  Receives the length in bytes; unchanged on failure.
/// @param[in]  cancel    Cancel flag.
/// @retval ADB_RESULT_OK             The list. The outputs are unchanged when the device refuses the
///                                   listing, even for the current user.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial or @p filter is null.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetPackagesNameOfInstalled(const char* serial, const char* filter, char** list,
                                                   int* list_len, const bool* cancel);

/// Lists installed packages as AdbGetPackagesNameOfInstalled() does, but cannot be cancelled.
///
/// @p list and @p list_len are not checked for null.
///
/// @param[in]  serial    Serial.
/// @param[in]  filter    As there; null for everything.
/// @param[out] list      Receives a block of @p list_len bytes **without a terminating zero**; free it with
///                       AdbFreeResource(). Unchanged on failure.
/// @param[out] list_len  Receives the length in bytes; unchanged on failure.
/// @retval ADB_RESULT_OK             As there.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial is null.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetPackagesNameList(const char* serial, const char* filter, char** list,
                                            int* list_len);

/// Finds the APK file of a package on the device (`pm path`); of a split package, the first file.
///
/// **The size of the buffer is ignored: it must have 4096 bytes.** No more than these are written. A longer path,
/// which no device should have, is cut. AdbGetApkPathOfInstatlledEx() does not have this limit.
///
/// @param[in]  serial       Serial.
/// @param[in]  package      Full package name.
/// @param[out] buffer       4096 bytes; receives the zero-terminated path; empty on failure.
/// @param[in]  buffer_size  Ignored.
/// @param[in]  cancel       Cancel flag.
/// @retval ADB_RESULT_OK             The path.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial, @p package or @p buffer is null.
/// @retval ADB_RESULT_BUFFER_TOO_SMALL  The path was cut to 4095 bytes.
/// @retval ADB_RESULT_NOT_FOUND      The package is not installed.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetApkPathOfInstatlled(const char* serial, const char* package, char* buffer,
                                               int buffer_size, const bool* cancel);

/// Finds all APK files of a package on the device (`pm path`).
///
/// @p json and @p json_len are not checked for null.
///
/// @param[in]  serial    Serial.
/// @param[in]  package   Full package name.
/// @param[out] json      Receives a block, **also with #ADB_RESULT_NOT_FOUND**: an object whose member
///                       `path` is an array of paths, or null when there are none. Free it with
///                       AdbFreeResource(). Unchanged with every other code.
/// @param[out] json_len  Receives its length in bytes, the terminating zero included.
/// @param[in]  cancel    Cancel flag.
/// @retval ADB_RESULT_OK             The paths.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial or @p package is null.
/// @retval ADB_RESULT_NOT_FOUND      The package is not installed, or the command failed for any reason
///                                   after adb was started, also for an absent device.
/// @return Otherwise a status from 3001 to 3007.
DAROKLEIM_EXPORT int AdbGetApkPathOfInstatlledEx(const char* serial, const char* package, char** json,
                                                 int* json_len, const bool* cancel);

/// Reads the version of an installed package (`dumpsys package`): the digits and dots that its version name
/// begins with, `1.2.3` for `1.2.3-beta`.
///
/// **The size of the buffer is ignored: it must have 4096 bytes.** No more than these are written: the author of
/// the application chooses the length of its version, and a longer one is cut. The word `Failure` in the dump is
/// not an error, except in a line that names the package `jp.naver.line.android`.
///
/// @param[in]  serial       Serial.
/// @param[in]  package      Full package name.
/// @param[out] buffer       4096 bytes; receives the zero-terminated version; empty on failure.
/// @param[in]  buffer_size  Ignored.
/// @param[in]  cancel       Cancel flag.
/// @retval ADB_RESULT_OK             The version.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial, @p package or @p buffer is null.
/// @retval ADB_RESULT_BUFFER_TOO_SMALL  The version was cut to 4095 bytes.
/// @retval ADB_RESULT_NOT_FOUND      The package is not installed, or its version name does not begin with a digit
///                                   or a dot.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbGetAppVersion(const char* serial, const char* package, char* buffer, int buffer_size,
                                      const bool* cancel);

/// @}
/// @defgroup install Install and uninstall
/// Besides the listed codes, an install returns the `ADB_RESULT_INSTALL_` code of the package manager's message.
/// #ADB_RESULT_OK means that the package manager did not report a known failure or, on Android 7 and later, exit
/// with a failure; AdbCheckAppInstalled() confirms it. Package names are read by the device's shell, as a bare
/// path is.
/// @{

/// Installs an APK file of the host, replacing an older version and keeping its data: copies it to
/// `/data/local/tmp/`, installs it as AdbInstallAppFromDevicePath() does, deletes the copy.
///
/// The copy has the name that follows the last slash. **It stays on the device** when the call is cancelled or the
/// connection breaks after the transfer, because no command runs under a flag that is set; and, without assistance,
/// when the name is not a bare path. Remove it with AdbRemoveFile(), or install a file of that name again. No
/// pointer is checked for null.
///
/// @param[in] serial     Serial.
/// @param[in] host_path  APK file, not a directory; a whole path. Its file name must fit into the command limit of
///                       AdbInstallAppFromDevicePath() and, without assistance, be valid for the @p device_path of
///                       that function.
/// @param[in] cancel     Cancel flag.
/// @retval ADB_RESULT_OK             Installed.
/// @retval ADB_RESULT_NO_SUCH_FILE   There is no such file on the host.
/// @retval ADB_RESULT_NO_SPACE_LEFT  The device does not have enough space for the copy.
/// @return Otherwise a code of AdbInstallAppFromDevicePath(), also when the transfer failed; 1001 when the
///         connection broke during the transfer.
DAROKLEIM_EXPORT int AdbInstallAppFromPCPath(const char* serial, const char* host_path, const bool* cancel);

/// Installs an APK file of the device, replacing an older version and keeping its data (`pm install -r`).
///
/// Command limit: 255 bytes. After a failure the free space is read, which cannot be cancelled.
///
/// @param[in] serial       Serial.
/// @param[in] device_path  APK file. It reaches the device in double quotes and may hold anything except
///                         quotes, `$`, a backquote and backslashes. Assistance makes it a whole path.
/// @param[in] cancel       Cancel flag.
/// @retval ADB_RESULT_OK                Installed. Also when a newer phone cannot open the file: its message
///                                      is not one of the known ones.
/// @retval ADB_RESULT_INVALID_PARAM     A text is null.
/// @retval ADB_RESULT_FAILURE           Failed for a reason that does not have a code.
/// @retval ADB_RESULT_NOT_ENOUGH_SPACE  The same while less than 200 MiB are free on `/sdcard`, or when the
///                                      free space could not be read; or the message says so.
/// @return Otherwise an install code or a common code.
DAROKLEIM_EXPORT int AdbInstallAppFromDevicePath(const char* serial, const char* device_path,
                                                 const bool* cancel);

/// Installs the APK files of one split package from the host, replacing an older version and keeping its
/// data (`adb install-multiple -r`).
///
/// No pointer is checked for null.
///
/// @param[in] serial      Serial.
/// @param[in] json_paths  JSON object whose arrays hold the files as strings, whole paths:
///                        `{"apks": ["/tmp/base.apk", "/tmp/split_de.apk"]}`. adb passes their names, without
///                        the directories, to the device's shell: these are bare paths. The arrays are
///                        used in the order of their names, and anything else in the object is ignored.
///                        The command is run even without any file.
/// @param[in] cancel      Cancel flag.
/// @retval ADB_RESULT_OK                 Installed.
/// @retval ADB_RESULT_JSON_PARSE_FAILED  @p json_paths is not JSON, has anything but an object (or null) at
///                                       its top, is nested more than 500 levels deep, or holds an array or an
///                                       object in one of its arrays; no command was run.
/// @retval ADB_RESULT_NO_SUCH_FILE       A file does not exist, or its name has a space.
/// @retval ADB_RESULT_FAILURE            Failed for a reason that does not have a code; the free space is not
///                                       read.
/// @return Otherwise an install code or a common code.
DAROKLEIM_EXPORT int AdbInstallMultipleAppFromPCPath(const char* serial, const char* json_paths,
                                                     const bool* cancel);

/// Queries the package manager for a package (`pm path`, with `-k` when @p keep is not 0).
///
/// Phones print nothing for an unknown package, which is a success here: use AdbCheckAppInstalled() to find out
/// whether a package is installed. Command limit: 127 bytes. No pointer is checked for null.
///
/// @param[in] serial   Serial.
/// @param[in] package  Full package name.
/// @param[in] keep     Not 0: with `-k`.
/// @param[in] cancel   Cancel flag.
/// @retval ADB_RESULT_OK       The package manager did not report a known error.
/// @retval ADB_RESULT_FAILURE  It reported a failure.
/// @return Otherwise a common code. A status other than 0 takes precedence over any message: an absent device is 1001.
DAROKLEIM_EXPORT int AdbCheckAppExist(const char* serial, const char* package, int keep, const bool* cancel);

/// Uninstalls a package (`pm uninstall`).
///
/// Command limit: 127 bytes. A longer name is cut, and a package with the cut name is uninstalled if there is
/// one. No pointer is checked for null.
///
/// @param[in] serial     Serial.
/// @param[in] package    Full package name.
/// @param[in] keep_data  Not 0: keep the application's data (`-k`).
/// @param[in] cancel     Cancel flag.
/// @retval ADB_RESULT_OK       Uninstalled, or the device did not report a known error.
/// @retval ADB_RESULT_FAILURE  Not installed, or protected.
/// @return Otherwise a common code. A status other than 0 takes precedence over any message: an absent device is 1001.
DAROKLEIM_EXPORT int AdbUninstallApp(const char* serial, const char* package, int keep_data,
                                     const bool* cancel);

/// @}
/// @defgroup control Backup, log and application control
/// @{

/// Saves an application's data to a file of the host (`adb backup -noapk -nosystem`).
///
/// Waits until the user has confirmed on the device; AdbStopDeviceBackupRestoreProcess() or the cancel flag
/// ends the wait. #ADB_RESULT_OK does not mean that data was saved: the user may have refused, or the wait may
/// have been ended, which leaves an empty file; the application may forbid backups or not be installed, which
/// gives a file without its data. **An existing file is overwritten at once**, also when the backup fails: write
/// to a temporary file and rename it.
///
/// @param[in] serial     Serial.
/// @param[in] package    Full package name, for the device's shell: a bare path.
/// @param[in] host_path  File to write; a whole path.
/// @param[in] cancel     Cancel flag.
/// @retval ADB_RESULT_OK             adb has ended without a known error.
/// @retval ADB_RESULT_INVALID_PARAM  A text is null.
/// @retval ADB_RESULT_NO_SUCH_FILE   The directory of @p host_path does not exist.
/// @return Otherwise a common code; 1001 when the file cannot be written.
DAROKLEIM_EXPORT int AdbBackupApp(const char* serial, const char* package, const char* host_path,
                                  const bool* cancel);

/// Restores a backup of AdbBackupApp() (`adb restore`) to the applications that are installed. Waits for the user
/// as AdbBackupApp() does; #ADB_RESULT_OK does not mean that the user agreed, or that the file was a backup.
///
/// No pointer is checked for null.
///
/// @param[in] serial     Serial.
/// @param[in] host_path  File to read; a whole path.
/// @param[in] cancel     Cancel flag.
/// @retval ADB_RESULT_OK            adb has ended without a known error.
/// @retval ADB_RESULT_NO_SUCH_FILE  There is no such file.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbRestoreApp(const char* serial, const char* host_path, const bool* cancel);

/// Closes the device's backup confirmation, so that a waiting AdbBackupApp() or AdbRestoreApp() of another
/// thread returns (`am force-stop com.android.backupconfirm`).
///
/// Command limit: 127 bytes. @p serial is not checked for null.
///
/// @param[in] serial  Serial.
/// @param[in] cancel  Cancel flag.
/// @retval ADB_RESULT_OK  Closed, or it was not open.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbStopDeviceBackupRestoreProcess(const char* serial, const bool* cancel);

/// Clears the log of the device (`adb logcat -c`).
///
/// **Waits for a device that is not ready** (absent, unauthorized or offline), until it is ready or the call is
/// cancelled, except with `DAROKLEIM_CHANNEL=direct`: check the state with AdbGetDevicesEx() first, or pass a cancel
/// flag. Command limit: 127 bytes. @p serial is not checked for null.
///
/// @param[in] serial  Serial.
/// @param[in] cancel  Cancel flag.
/// @retval ADB_RESULT_OK  Cleared.
/// @return Otherwise a common code; #ADB_CHANNEL_CANCELLED after a cancel.
DAROKLEIM_EXPORT int AdbClearLogcat(const char* serial, const bool* cancel);

/// What AdbLogcatAnsync() calls with each piece of the log. It runs on a thread of the library, never two
/// at a time for one stream, and must not throw a C++ exception.
///
/// @param[in] context  The pointer that was passed to AdbLogcatAnsync().
/// @param[in] data     Bytes of the log, not zero-terminated, valid during the call; a piece may begin and
///                     end in the middle of a line. Null in the last call of the stream.
/// @param[in] length   Number of bytes in @p data; in the last call the status that the stream ended with:
///                     #ADB_CHANNEL_CANCELLED when its cancel flag was set.
typedef void (*DarokleimOutputCallback)(void* context, const char* data, int length);

/// Starts a stream of the device's log and returns at once (`adb logcat -s FILTER`).
///
/// The stream runs until the cancel flag is set, the device is disconnected or the process ends. When the start
/// fails, @p on_output is not called. adb **waits for a device that is not ready**, and its line
/// `- waiting for device -` is the first output then. Do not call it from two threads at once; several streams may run
/// simultaneously. Command limit: 255 bytes. No pointer is checked for null.
///
/// @code{.c}
/// static void OnLog(void* context, const char* data, int length) {
///   if (data != NULL) fwrite(data, 1, (size_t)length, (FILE*)context);
/// }
///
/// static bool stop;
/// // In C, through the integer type of <stdint.h>:
/// AdbLogcatAnsync(serial, "ActivityManager:I", (void*)(uintptr_t)OnLog, stderr, &stop);
/// // In C++:
/// AdbLogcatAnsync(serial, "ActivityManager:I", reinterpret_cast<void*>(&OnLog), stderr, &stop);
/// @endcode
///
/// @param[in] serial     Serial; needed during the call only.
/// @param[in] filter     What to show, as for `logcat`: `TAG:PRIORITY`, several separated by spaces;
///                       needed during the call only.
/// @param[in] on_output  Address of a ::DarokleimOutputCallback, cast to `void*`; null discards the log.
/// @param[in] context    Handed to the callback; must outlive the stream.
/// @param[in] cancel     Cancel flag; must outlive the stream.
/// @return The status of the start only: 0 when the stream runs.
DAROKLEIM_EXPORT int AdbLogcatAnsync(const char* serial, const char* filter, void* on_output, void* context,
                                     const bool* cancel);

/// Starts an activity on the device (`am start -n COMPONENT EXTRAS`). Cannot be cancelled.
///
/// Command limit: 511 bytes.
///
/// @param[in] serial     Serial.
/// @param[in] component  Package and activity: `com.example.app/.MainActivity`.
/// @param[in] extras     More options of `am start`, for example `-a android.intent.action.VIEW`; may be
///                       null.
/// @retval ADB_RESULT_OK              Started, or was running.
/// @retval ADB_RESULT_INVALID_PARAM   @p serial or @p component is null.
/// @retval ADB_RESULT_PROTOCOL_FAULT  The device printed an `Error`: there is no such activity, or it may
///                                    not be started.
/// @return Otherwise the status only.
DAROKLEIM_EXPORT int AdbStartApp(const char* serial, const char* component, const char* extras);

/// Types a text into the field of the device that has the focus (`input text`).
///
/// The text is read by the device's shell as a shell path is; without assistance write a space as `%s`, which
/// `input` converts back. ASCII only: `input` does not accept other characters.
///
/// @param[in] serial  Serial.
/// @param[in] text    Text to type.
/// @param[in] cancel  Cancel flag.
/// @retval ADB_RESULT_OK             Typed.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial or @p text is null.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int AdbInputStringToDevice(const char* serial, const char* text, const bool* cancel);

/// @}
/// @defgroup ports Port mappings
/// Ports are decimal texts, `"8080"`. They are not checked here: adb refuses any other. A mapping lasts until it
/// is removed, the device is disconnected or the adb server ends. These functions cannot be cancelled. Command
/// limit of all: 511 bytes.
/// @{

/// Maps a TCP port of the host to one of the device (`adb forward`): a connection to @p host_port on the host
/// reaches @p device_port on the device. An existing mapping of that host port is replaced.
///
/// With host port `0` adb chooses a port, which is not reported.
///
/// @param[in] serial       Serial.
/// @param[in] host_port    Port to listen on.
/// @param[in] device_port  Port to connect to.
/// @retval ADB_RESULT_OK              Mapped.
/// @retval ADB_RESULT_INVALID_PARAM   An argument is null.
/// @retval ADB_RESULT_PROTOCOL_FAULT  adb printed an `Error`.
/// @return Otherwise the status only; 1001 for a port in use, a bad port or an absent device.
DAROKLEIM_EXPORT int AdbFowardBind(const char* serial, const char* host_port, const char* device_port);

/// Removes a mapping of AdbFowardBind() (`adb forward --remove`).
///
/// @param[in] serial     Serial.
/// @param[in] host_port  The host port of the mapping.
/// @retval ADB_RESULT_OK              Removed.
/// @retval ADB_RESULT_INVALID_PARAM   An argument is null.
/// @retval ADB_RESULT_PROTOCOL_FAULT  adb printed an `Error`.
/// @return Otherwise the status only; 1001 when there is no such mapping or device.
DAROKLEIM_EXPORT int AdbFowardRemove(const char* serial, const char* host_port);

/// Maps a TCP port of the device to one of the host (`adb reverse`): a connection to @p device_port on the
/// device reaches @p host_port on the host. An existing mapping of that device port is replaced.
///
/// The listening port is the first one, which is the device's here.
///
/// @param[in] serial       Serial.
/// @param[in] device_port  Port to listen on.
/// @param[in] host_port    Port to connect to.
/// @retval ADB_RESULT_OK              Mapped.
/// @retval ADB_RESULT_INVALID_PARAM   An argument is null.
/// @retval ADB_RESULT_PROTOCOL_FAULT  adb printed an `Error`.
/// @return Otherwise the status only; 1001 for a port in use, a bad port or an absent device.
DAROKLEIM_EXPORT int AdbReverseBind(const char* serial, const char* device_port, const char* host_port);

/// Removes a mapping of AdbReverseBind() (`adb reverse --remove`).
///
/// @param[in] serial       Serial.
/// @param[in] device_port  The device port of the mapping.
/// @retval ADB_RESULT_OK              Removed.
/// @retval ADB_RESULT_INVALID_PARAM   An argument is null.
/// @retval ADB_RESULT_PROTOCOL_FAULT  adb printed an `Error`.
/// @return Otherwise the status only; 1001 when there is no such mapping or device.
DAROKLEIM_EXPORT int AdbReverseRemove(const char* serial, const char* device_port);

/// @}
/// @defgroup server The adb server and busybox
/// adb uses a server process on the host, which the first command starts and which all programs of the user
/// share.
/// @{

/// Starts the adb server, unless it is running (`adb start-server`).
///
/// @param[in] kill_first  Call AdbKillDaemon() before; that step cannot be cancelled.
/// @param[in] cancel      Cancel flag.
/// @retval ADB_RESULT_OK              The server is running.
/// @retval ADB_RESULT_PROTOCOL_FAULT  The server is running as well: adb's text began with
///                                    `daemon started successfully`.
/// @return Otherwise the status only: the server is not running.
DAROKLEIM_EXPORT int AdbStartDaemon(bool kill_first, const bool* cancel);

/// The same as AdbStartDaemon() under another name in the log.
///
/// @param[in] kill_first  Call AdbKillDaemon() before; that step cannot be cancelled.
/// @param[in] cancel      Cancel flag.
/// @return As AdbStartDaemon().
DAROKLEIM_EXPORT int AdbStartDaemonEx(bool kill_first, const bool* cancel);

/// Stops the adb server (`adb kill-server`), then **kills processes of the host**: every process whose line in
/// `ps -ax` holds the word adb, of any program and on any port, with SIGKILL.
///
/// This includes other programs' adb commands, a text editor with a file `adb.txt`, and the calling process
/// itself if the word is in its name or arguments. All running commands fail, and port mappings and streams end.
///
/// @param[in] cancel  Cancel flag of `kill-server`; the killing cannot be cancelled.
DAROKLEIM_EXPORT void AdbKillDaemon(const bool* cancel);

/// Kills and starts the adb server: AdbStartDaemon() with @p kill_first. The warnings of AdbKillDaemon() apply.
/// Cannot be cancelled.
///
/// @return As AdbStartDaemon().
DAROKLEIM_EXPORT int AdbRestartDaemon(void);

/// Installs busybox on the device: copies it from the resource directory to `/data/local/tmp/busybox`,
/// unless that file exists, and makes it executable.
///
/// @param[in] serial  Serial.
/// @param[in] cancel  Cancel flag.
/// @retval ADB_RESULT_OK             busybox is installed.
/// @retval ADB_RESULT_INVALID_PARAM  @p serial is null.
/// @return Otherwise the code of the step that failed: AdbCheckFileExisted(), AdbPushFile() or
///         AdbChmodFile().
DAROKLEIM_EXPORT int AdbConfigDeviceBusybox(const char* serial, const bool* cancel);

/// @}

#ifdef __cplusplus
}  // extern "C"

/// @defgroup cxx For C++ only
/// Steps of the functions above, with fewer checks. Applications rarely need them.
/// @{

/// Reads any system property of the device (`getprop`).
///
/// The text belongs to the command channel: release it with the channel's `ReleaseAdbOutBuffer(*out)`, whatever
/// the result, **not with AdbFreeResource()**. No pointer is checked for null. Command limit: 255
/// bytes.
///
/// @param[in]     serial     Serial.
/// @param[in]     prop_name  Name of the property.
/// @param[in,out] out        Address of a pointer that is null; receives the text as the device printed it,
///                           its line break included, followed by a zero byte. Null without a text.
/// @param[in,out] out_len    Address of a 0; receives the length in bytes without the zero.
/// @param[in]     cancel     Cancel flag.
/// @retval ADB_RESULT_OK  The value, an empty line when the device has no such property.
/// @return Otherwise a common code.
DAROKLEIM_EXPORT int GetPropInfo(const char* serial, const char* prop_name, char** out, int* out_len,
                                 const bool* cancel);

/// Appends the date of a MIUI build to its version, with dots between: year - 2010, month, day of the
/// month + 1, in UTC. 1583366400 (2020-03-05) appends `10.3.6`.
///
/// @param[in]     time_code  Decimal seconds since 1970-01-01 00:00 UTC; text after the digits is
///                           ignored.
/// @param[in,out] version    Text to append to.
/// @return False when @p time_code is not such a number; @p version may then hold a part of the date.
DAROKLEIM_EXPORT bool AppendMiuiVersionByTimeCode(std::string time_code, std::string& version);

/// Checks whether a file or directory exists on the device, by searching for its name in its parent directory
/// (`adb ls`).
///
/// No pointer is checked for null.
///
/// @param[in]  serial       Serial.
/// @param[in]  device_path  Absolute path without a slash at its end; a whole path.
/// @param[out] exists       Set to true when the path was found, otherwise unchanged: start from false.
/// @param[in]  cancel       Cancel flag.
/// @retval ADB_RESULT_OK  The answer; also for a path without any slash, which is not searched for.
/// @return Otherwise the status only.
DAROKLEIM_EXPORT int AdbCheckFileExistedUsingFolderContent(const char* serial, const char* device_path,
                                                           bool* exists, const bool* cancel);

/// Reads when a file on the device was last modified, from its parent directory (`adb ls`).
///
/// Uses the first entry whose line contains the name. That can be another file: one with a longer name or, when
/// the name consists of hexadecimal digits as `ab` does, one with such a number as its mode, size or time. A
/// name with a space is never found. No pointer is checked for null.
///
/// @param[in]  serial       Serial.
/// @param[in]  device_path  Absolute path; a whole path.
/// @param[out] seconds      Receives the seconds since 1970-01-01 00:00 UTC; unchanged when the file was
///                          not found: start from 0.
/// @param[in]  cancel       Cancel flag.
/// @retval ADB_RESULT_OK  The time; also for a path without any slash, which is not searched for.
/// @return Otherwise the status only.
DAROKLEIM_EXPORT int AdbGetFileCreateTimeFromLs(const char* serial, const char* device_path,
                                                unsigned long long* seconds, const bool* cancel);

/// @}
#endif  // __cplusplus

#endif  // DAROKLEIM_INCLUDE_DAROKLEIM_H

// A row for each function of darokleim.h. A test compares names and parameters with the header.
#include <darokleim.h>

#include <cstddef>
#include <type_traits>

#include "src/platform/command_channel.h"
#include "tools/cli/commands/sdk/function.h"

namespace darokleim::cli {
namespace {

using Kind = ParameterKind;
using Parameters = std::vector<Parameter>;

// A value as an argument of that type.
template <typename T>
T As(Value& value) {
  if constexpr (std::is_same_v<T, const char*>) return value.is_null ? nullptr : value.text.c_str();
  if constexpr (std::is_same_v<T, std::string> || std::is_same_v<T, std::string&>) return value.text;
  if constexpr (std::is_same_v<T, char*>) return value.buffer.data();
  if constexpr (std::is_same_v<T, char**>) return &value.block;
  if constexpr (std::is_same_v<T, bool>) return value.answer;
  if constexpr (std::is_same_v<T, bool*>) return &value.answer;
  if constexpr (std::is_same_v<T, const bool*>) return value.flag;
  if constexpr (std::is_same_v<T, int>) return value.number;
  if constexpr (std::is_same_v<T, int*>) return &value.number;
  if constexpr (std::is_same_v<T, long long*>) return &value.long_number;
  if constexpr (std::is_same_v<T, unsigned long long*>) return &value.large_number;
  if constexpr (std::is_same_v<T, void*> || std::is_same_v<T, const void*>) return value.pointer;
}

template <typename Result, typename... Arguments, std::size_t... Index>
Returned CallWith(Result (*function)(Arguments...), std::vector<Value>& values,
                  std::index_sequence<Index...>) {
  if constexpr (std::is_void_v<Result>) {
    function(As<Arguments>(values[Index])...);
    return std::monostate();
  } else {
    return function(As<Arguments>(values[Index])...);
  }
}

template <typename Result, typename... Arguments>
Returned CallWith(Result (*function)(Arguments...), std::vector<Value>& values) {
  return CallWith(function, values, std::index_sequence_for<Arguments...>());
}

// The name and the function cannot differ.
#define DAROKLEIM_FUNCTION(function) #function
#define DAROKLEIM_CALL(function) [](std::vector<Value>& values) { return CallWith(&(function), values); }

Parameter Serial() {
  return {Kind::kSerial, "serial", ""};
}
Parameter Cancel() {
  return {Kind::kCancel, "cancel", ""};
}
Parameter Buffer() {
  return {Kind::kBuffer, "buffer", ""};
}
Parameter BufferSize() {
  return {Kind::kBufferSize, "buffer_size", ""};
}
Parameter Package(const char* name = "package") {
  return {Kind::kPackage, name, "Full name of a package, for example com.example.app"};
}
Parameter DevicePath(std::string help, const char* name = "device_path") {
  return {Kind::kDevicePath, name, std::move(help)};
}
Parameter HostPath(std::string help) {
  return {Kind::kHostPath, "host_path", std::move(help)};
}
Parameter Text(const char* name, std::string help) {
  return {Kind::kText, name, std::move(help)};
}
Parameter Switch(const char* name, std::string help) {
  return {Kind::kSwitch, name, std::move(help)};
}

// serial, what is asked about, where the answer goes, cancel
Parameters Asks(Parameter output) {
  return {Serial(), std::move(output), Cancel()};
}
Parameters AsksForText() {
  return {Serial(), Buffer(), BufferSize(), Cancel()};
}
Parameters AsksForBlock(const char* block, const char* length) {
  return {Serial(), {Kind::kBlock, block, ""}, {Kind::kLength, length, ""}, Cancel()};
}
Parameters ListsDirectory(const char* switches_help) {
  return {Serial(),
          DevicePath("Directory to list", "dir"),
          {Kind::kBlock, "json", ""},
          {Kind::kLength, "json_len", ""},
          Switch("recursive", std::string("Also the directories below") + switches_help),
          Switch("all", std::string("Also names that begin with a dot") + switches_help),
          Cancel()};
}
Parameters StartsServer() {
  return {Switch("kill_first", "Call AdbKillDaemon before"), Cancel()};
}
Parameters MapsPorts(const char* first, const char* second) {
  return {Serial(), Text(first, "TCP port to listen on"), Text(second, "TCP port to connect to")};
}

bool Kills(const std::vector<Value>&) {
  return true;
}
bool KillsFirst(const std::vector<Value>& values) {
  return values.front().answer;
}

constexpr char kListingNote[] =
    "The function also writes the listing to F:\\file_list.json in the current folder, as it does for an "
    "application.";
constexpr char kKillNote[] =
    "This kills every process of this computer whose line in `ps -ax` holds the word adb, of any program and "
    "on any\nport: --force confirms that.";
constexpr char kBackupNote[] =
    "The phone asks its user first. An existing file is overwritten at once, also when the backup fails.";
constexpr char kUncheckedSizeNote[] =
    "The function ignores the size of the buffer, which has 4096 bytes here at the least.";
constexpr char kWaitNote[] =
    "adb waits for a device that is not ready, until Ctrl-C or the end of --timeout.";

std::vector<SdkFunction> StartFunctions() {
  return {
      {DAROKLEIM_FUNCTION(AdbSdkInit),
       "Starts the library",
       "/opt/example/tools /tmp",
       {{Kind::kHostDirectory, "resource_dir", "Directory with the executables adb and busybox"},
        {Kind::kLogContext, "log_context", ""},
        {Kind::kHostDirectory, "log_dir", "Directory for the log files"}},
       DAROKLEIM_CALL(AdbSdkInit),
       "The log context is a pointer of the tool's own.",
       false},
      {DAROKLEIM_FUNCTION(AdbFreeResource),
       "Frees a block of the library",
       "",
       {{Kind::kFreedBlock, "buffer", ""}},
       DAROKLEIM_CALL(AdbFreeResource),
       "The block is a list of devices, which is asked for with AdbGetDevicesEx before. The output says "
       "whether the pointer to it is\nnull after the call."},
  };
}

std::vector<SdkFunction> DeviceFunctions() {
  return {
      {DAROKLEIM_FUNCTION(AdbGetDevices),
       "Lists the devices into a buffer",
       "",
       {Buffer(), BufferSize(), Cancel()},
       DAROKLEIM_CALL(AdbGetDevices),
       ""},
      {DAROKLEIM_FUNCTION(AdbGetDevicesEx),
       "Lists the devices into a block",
       "",
       {{Kind::kBlock, "list", ""}, {Kind::kLength, "list_len", ""}, Cancel()},
       DAROKLEIM_CALL(AdbGetDevicesEx),
       ""},
      {DAROKLEIM_FUNCTION(AdbAuthenticateShow),
       "Makes an unauthorized device ask its user again",
       "",
       {Serial(), Cancel()},
       DAROKLEIM_CALL(AdbAuthenticateShow),
       "Its code is 1 when the request was made.",
       true,
       ADB_RESULT_PROTOCOL_FAULT},
      {DAROKLEIM_FUNCTION(AdbReconnectDevice),
       "Re-opens the connection to the attached device",
       "",
       {},
       DAROKLEIM_CALL(AdbReconnectDevice),
       ""},
      {DAROKLEIM_FUNCTION(AdbReboot),
       "Restarts a device",
       "",
       {Serial(), Cancel()},
       DAROKLEIM_CALL(AdbReboot),
       ""},
  };
}

std::vector<SdkFunction> PropertyFunctions() {
  return {
      {DAROKLEIM_FUNCTION(AdbGetPhoneManufacturer), "Reads the manufacturer", "", AsksForText(),
       DAROKLEIM_CALL(AdbGetPhoneManufacturer), ""},
      {DAROKLEIM_FUNCTION(AdbGetPhoneSoftVersion), "Reads the Android release", "", AsksForText(),
       DAROKLEIM_CALL(AdbGetPhoneSoftVersion), ""},
      {DAROKLEIM_FUNCTION(AdbGetPhoneProductModel), "Reads the model", "", AsksForText(),
       DAROKLEIM_CALL(AdbGetPhoneProductModel), ""},
      {DAROKLEIM_FUNCTION(AdbGetMiuiBuildRegin), "Reads the region of a MIUI build", "", AsksForText(),
       DAROKLEIM_CALL(AdbGetMiuiBuildRegin), ""},
      {DAROKLEIM_FUNCTION(AdbGetMiuiVersion), "Composes the version of MIUI", "", AsksForText(),
       DAROKLEIM_CALL(AdbGetMiuiVersion), ""},
      {DAROKLEIM_FUNCTION(AdbCheckLockedState), "Checks whether the boot loader is locked", "",
       Asks({Kind::kAnswer, "locked", ""}), DAROKLEIM_CALL(AdbCheckLockedState), ""},
      {DAROKLEIM_FUNCTION(AdbCheckEncryptState), "Checks whether the user data is encrypted", "",
       Asks({Kind::kAnswer, "encrypted", ""}), DAROKLEIM_CALL(AdbCheckEncryptState), ""},
      {DAROKLEIM_FUNCTION(AdbGetEncryptType), "Reads how the user data is encrypted", "",
       Asks({Kind::kNumber, "type", ""}), DAROKLEIM_CALL(AdbGetEncryptType),
       "The type is 0 for file by file, 1 for the whole disk; -1 is left where the device reports neither."},
      {DAROKLEIM_FUNCTION(AdbCheckIsHarmony), "Checks whether the device runs HarmonyOS", "",
       Asks({Kind::kAnswer, "is_harmony", ""}), DAROKLEIM_CALL(AdbCheckIsHarmony), ""},
      {DAROKLEIM_FUNCTION(IsDeviceHadBeenRooted), "Checks whether the device is rooted", "",
       Asks({Kind::kAnswer, "rooted", ""}), DAROKLEIM_CALL(IsDeviceHadBeenRooted), ""},
      {DAROKLEIM_FUNCTION(AdbGetIPAddress), "Reads the address in the Wi-Fi network", "",
       AsksForBlock("ip", "ip_len"), DAROKLEIM_CALL(AdbGetIPAddress), ""},
      {DAROKLEIM_FUNCTION(AdbGetDeviceCurrentTime), "Reads the clock of the device", "", AsksForText(),
       DAROKLEIM_CALL(AdbGetDeviceCurrentTime), ""},
  };
}

std::vector<SdkFunction> FileFunctions() {
  return {
      {DAROKLEIM_FUNCTION(AdbPushFile),
       "Copies a file from this computer to the device",
       "photo.jpg /sdcard/photo.jpg",
       {Serial(), HostPath("File or directory to copy"), DevicePath("File to write, or a directory"),
        Cancel()},
       DAROKLEIM_CALL(AdbPushFile),
       ""},
      {DAROKLEIM_FUNCTION(AdbPullFile),
       "Copies a file from the device to this computer",
       "/sdcard/photo.jpg photo.jpg",
       {Serial(), DevicePath("File to copy"), HostPath("File to write, or a directory"), Cancel()},
       DAROKLEIM_CALL(AdbPullFile),
       ""},
      {DAROKLEIM_FUNCTION(AdbCopyFile),
       "Copies a file on the device",
       "/sdcard/a.txt /sdcard/b.txt",
       {Serial(), DevicePath("File to copy", "source"),
        DevicePath("File or directory to copy to", "destination"), Cancel()},
       DAROKLEIM_CALL(AdbCopyFile),
       ""},
      {DAROKLEIM_FUNCTION(AdbRemoveFile),
       "Deletes a file on the device",
       "/sdcard/a.txt",
       {Serial(), DevicePath("File to delete"), Cancel()},
       DAROKLEIM_CALL(AdbRemoveFile),
       ""},
      {DAROKLEIM_FUNCTION(AdbRenameFile),
       "Renames a file on the device",
       "/sdcard/a.txt /sdcard/b.txt",
       {Serial(), DevicePath("What to rename", "old_path"), DevicePath("Its new path", "new_path"), Cancel()},
       DAROKLEIM_CALL(AdbRenameFile),
       ""},
      {DAROKLEIM_FUNCTION(AdbCreateDir),
       "Creates a directory on the device",
       "/sdcard/new",
       {Serial(), DevicePath("Directory to create"), Cancel()},
       DAROKLEIM_CALL(AdbCreateDir),
       ""},
      {DAROKLEIM_FUNCTION(AdbChmodFile),
       "Changes the mode of a file on the device",
       "/data/local/tmp/run 755",
       {Serial(), DevicePath("File or directory"), Text("mode", "Mode as for chmod: 644, a+x"), Cancel()},
       DAROKLEIM_CALL(AdbChmodFile),
       ""},
      {DAROKLEIM_FUNCTION(AdbCheckFileExisted),
       "Checks whether a path exists on the device",
       "/sdcard/a.txt",
       {Serial(), DevicePath("File or directory"), {Kind::kAnswer, "exists", ""}, Cancel()},
       DAROKLEIM_CALL(AdbCheckFileExisted),
       ""},
      {DAROKLEIM_FUNCTION(AdbGetFileSize),
       "Reads the size of a file on the device",
       "/sdcard/a.txt",
       {Serial(), DevicePath("File"), {Kind::kLargeNumber, "size", ""}, Cancel()},
       DAROKLEIM_CALL(AdbGetFileSize),
       "The size is in bytes."},
      {DAROKLEIM_FUNCTION(AdbGetFileCreateTime),
       "Reads when a file was last modified",
       "/sdcard/a.txt",
       {Serial(), DevicePath("File"), {Kind::kLargeNumber, "seconds", ""}, Cancel()},
       DAROKLEIM_CALL(AdbGetFileCreateTime),
       "The time is in seconds since 1970-01-01 00:00 UTC."},
      {DAROKLEIM_FUNCTION(AdbScreencapToPC),
       "Takes a screenshot into a file of this computer",
       "screen.png",
       {Serial(), HostPath("File to write"), Cancel()},
       DAROKLEIM_CALL(AdbScreencapToPC),
       ""},
      {DAROKLEIM_FUNCTION(AdbScreencapToDevice),
       "Takes a screenshot into a file of the device",
       "/sdcard/screen.png",
       {Serial(), DevicePath("File to write"), Cancel()},
       DAROKLEIM_CALL(AdbScreencapToDevice),
       ""},
  };
}

std::vector<SdkFunction> DirectoryFunctions() {
  return {
      {DAROKLEIM_FUNCTION(AdbGetDirFiles), "Lists the files of a directory with ls", "/sdcard/ 0 0",
       ListsDirectory(""), DAROKLEIM_CALL(AdbGetDirFiles), kListingNote},
      {DAROKLEIM_FUNCTION(AdbGetDirFilesEx), "Lists all files below a directory with adb's service",
       "/sdcard 0 0", ListsDirectory("; ignored"), DAROKLEIM_CALL(AdbGetDirFilesEx), kListingNote},
      {DAROKLEIM_FUNCTION(AdbGetDirFilesAndDirs), "Lists all files below a directory as a tree",
       "/sdcard 0 0", ListsDirectory("; ignored"), DAROKLEIM_CALL(AdbGetDirFilesAndDirs), kListingNote},
      {DAROKLEIM_FUNCTION(AdbGetFilesBySuffix),
       "Finds the files with one of several suffixes",
       "/sdcard 'jpg;png'",
       {Serial(),
        DevicePath("Directory to search", "dir"),
        Text("suffixes", "Suffixes without the dot, separated by semicolons"),
        {Kind::kBlock, "json", ""},
        {Kind::kLength, "json_len", ""},
        Cancel()},
       DAROKLEIM_CALL(AdbGetFilesBySuffix),
       kListingNote},
      {DAROKLEIM_FUNCTION(AdbGetDirSize),
       "Measures a directory",
       "/sdcard/DCIM",
       {Serial(), DevicePath("Directory to measure", "dir"), {Kind::kLongNumber, "size", ""}, Cancel()},
       DAROKLEIM_CALL(AdbGetDirSize),
       "The size is in the unit of the device's du, normally 1024 bytes. Needs --busybox."},
  };
}

std::vector<SdkFunction> StorageFunctions() {
  return {
      {DAROKLEIM_FUNCTION(AdbGetFirstSDCardPath), "Finds the shared storage", "", AsksForText(),
       DAROKLEIM_CALL(AdbGetFirstSDCardPath), ""},
      {DAROKLEIM_FUNCTION(AdbGetStorageFreeSpace),
       "Reads the free space of a storage",
       "/sdcard",
       {Serial(),
        DevicePath("Any path on the storage", "path"),
        {Kind::kLargeNumber, "free_bytes", ""},
        Cancel()},
       DAROKLEIM_CALL(AdbGetStorageFreeSpace),
       ""},
      {DAROKLEIM_FUNCTION(AdbSearchSDCardPath), "Lists the storage volumes", "",
       AsksForBlock("paths", "paths_len"), DAROKLEIM_CALL(AdbSearchSDCardPath), ""},
      {DAROKLEIM_FUNCTION(AdbSearchExternalSDCardPath), "Finds the memory card", "",
       AsksForBlock("path", "path_len"), DAROKLEIM_CALL(AdbSearchExternalSDCardPath), ""},
  };
}

std::vector<SdkFunction> PackageFunctions() {
  return {
      {DAROKLEIM_FUNCTION(AdbCheckAppInstalled),
       "Checks whether a package is installed",
       "com.example.app",
       {Serial(), Package(), {Kind::kAnswer, "installed", ""}, Cancel()},
       DAROKLEIM_CALL(AdbCheckAppInstalled),
       ""},
      {DAROKLEIM_FUNCTION(AdbGetPackagesNameOfInstalled),
       "Lists installed packages",
       "-- -3",
       {Serial(),
        Text("filter", "Options of `pm list packages`, part of a name, or both; may be empty"),
        {Kind::kBlock, "list", ""},
        {Kind::kLength, "list_len", ""},
        Cancel()},
       DAROKLEIM_CALL(AdbGetPackagesNameOfInstalled),
       ""},
      {DAROKLEIM_FUNCTION(AdbGetPackagesNameList),
       "Lists installed packages, without a cancel flag",
       "com.example",
       {Serial(),
        {Kind::kOptionalText, "filter",
         "Options of `pm list packages`, part of a name, or both; a null pointer when left out"},
        {Kind::kBlock, "list", ""},
        {Kind::kLength, "list_len", ""}},
       DAROKLEIM_CALL(AdbGetPackagesNameList),
       ""},
      {DAROKLEIM_FUNCTION(AdbGetApkPathOfInstatlled),
       "Finds the APK file of a package",
       "com.example.app",
       {Serial(), Package(), Buffer(), BufferSize(), Cancel()},
       DAROKLEIM_CALL(AdbGetApkPathOfInstatlled),
       kUncheckedSizeNote},
      {DAROKLEIM_FUNCTION(AdbGetApkPathOfInstatlledEx),
       "Finds all APK files of a package",
       "com.example.app",
       {Serial(), Package(), {Kind::kBlock, "json", ""}, {Kind::kLength, "json_len", ""}, Cancel()},
       DAROKLEIM_CALL(AdbGetApkPathOfInstatlledEx),
       ""},
      {DAROKLEIM_FUNCTION(AdbGetAppVersion),
       "Reads the version of a package",
       "com.example.app",
       {Serial(), Package(), Buffer(), BufferSize(), Cancel()},
       DAROKLEIM_CALL(AdbGetAppVersion),
       kUncheckedSizeNote},
  };
}

std::vector<SdkFunction> InstallFunctions() {
  return {
      {DAROKLEIM_FUNCTION(AdbInstallAppFromPCPath),
       "Installs an APK file of this computer",
       "app.apk",
       {Serial(), HostPath("APK file"), Cancel()},
       DAROKLEIM_CALL(AdbInstallAppFromPCPath),
       ""},
      {DAROKLEIM_FUNCTION(AdbInstallAppFromDevicePath),
       "Installs an APK file of the device",
       "/data/local/tmp/app.apk",
       {Serial(), DevicePath("APK file"), Cancel()},
       DAROKLEIM_CALL(AdbInstallAppFromDevicePath),
       ""},
      {DAROKLEIM_FUNCTION(AdbInstallMultipleAppFromPCPath),
       "Installs the APK files of a split package",
       R"('{"apks": ["base.apk", "split.apk"]}')",
       {Serial(), Text("json_paths", "JSON object whose arrays hold the files"), Cancel()},
       DAROKLEIM_CALL(AdbInstallMultipleAppFromPCPath),
       ""},
      {DAROKLEIM_FUNCTION(AdbCheckAppExist),
       "Queries the package manager for a package",
       "com.example.app 0",
       {Serial(), Package(), Switch("keep", "With -k"), Cancel()},
       DAROKLEIM_CALL(AdbCheckAppExist),
       ""},
      {DAROKLEIM_FUNCTION(AdbUninstallApp),
       "Uninstalls a package",
       "com.example.app 0",
       {Serial(), Package(), Switch("keep_data", "Keep the application's data"), Cancel()},
       DAROKLEIM_CALL(AdbUninstallApp),
       ""},
  };
}

std::vector<SdkFunction> ControlFunctions() {
  return {
      {DAROKLEIM_FUNCTION(AdbBackupApp),
       "Saves an application's data in a file",
       "com.example.app app.ab",
       {Serial(), Package(), HostPath("File to write"), Cancel()},
       DAROKLEIM_CALL(AdbBackupApp),
       kBackupNote},
      {DAROKLEIM_FUNCTION(AdbRestoreApp),
       "Restores a backup",
       "app.ab",
       {Serial(), HostPath("File to read"), Cancel()},
       DAROKLEIM_CALL(AdbRestoreApp),
       "The phone asks its user first."},
      {DAROKLEIM_FUNCTION(AdbStopDeviceBackupRestoreProcess),
       "Closes the device's backup confirmation",
       "",
       {Serial(), Cancel()},
       DAROKLEIM_CALL(AdbStopDeviceBackupRestoreProcess),
       ""},
      {DAROKLEIM_FUNCTION(AdbClearLogcat),
       "Clears the log of the device",
       "",
       {Serial(), Cancel()},
       DAROKLEIM_CALL(AdbClearLogcat),
       kWaitNote},
      {DAROKLEIM_FUNCTION(AdbLogcatAnsync),
       "Starts a stream of the device's log",
       "ActivityManager:I",
       {Serial(),
        Text("filter", "As for logcat: TAG:PRIORITY, several separated by spaces"),
        {Kind::kOnOutput, "on_output", ""},
        {Kind::kOnOutputContext, "context", ""},
        Cancel()},
       DAROKLEIM_CALL(AdbLogcatAnsync),
       "The stream is shown until Ctrl-C, the end of --timeout or its own end."},
      {DAROKLEIM_FUNCTION(AdbStartApp),
       "Starts an activity on the device",
       "com.example.app/.MainActivity -- \"-a android.intent.action.VIEW\"",
       {Serial(),
        Text("component", "Package and activity: com.example.app/.MainActivity"),
        {Kind::kOptionalText, "extras", "More options of `am start`; a null pointer when left out"}},
       DAROKLEIM_CALL(AdbStartApp),
       ""},
      {DAROKLEIM_FUNCTION(AdbInputStringToDevice),
       "Types a text on the device",
       "hello%sworld",
       {Serial(), Text("text", "Text to type"), Cancel()},
       DAROKLEIM_CALL(AdbInputStringToDevice),
       "The log of commands leaves the text out."},
  };
}

std::vector<SdkFunction> PortFunctions() {
  return {
      {DAROKLEIM_FUNCTION(AdbFowardBind), "Maps a port of this computer to one of the device", "8080 80",
       MapsPorts("host_port", "device_port"), DAROKLEIM_CALL(AdbFowardBind), ""},
      {DAROKLEIM_FUNCTION(AdbFowardRemove),
       "Removes a mapping of AdbFowardBind",
       "8080",
       {Serial(), Text("host_port", "Port of the mapping")},
       DAROKLEIM_CALL(AdbFowardRemove),
       ""},
      {DAROKLEIM_FUNCTION(AdbReverseBind), "Maps a port of the device to one of this computer", "3000 8080",
       MapsPorts("device_port", "host_port"), DAROKLEIM_CALL(AdbReverseBind), ""},
      {DAROKLEIM_FUNCTION(AdbReverseRemove),
       "Removes a mapping of AdbReverseBind",
       "3000",
       {Serial(), Text("device_port", "Port of the mapping")},
       DAROKLEIM_CALL(AdbReverseRemove),
       ""},
  };
}

std::vector<SdkFunction> ServerFunctions() {
  return {
      {DAROKLEIM_FUNCTION(AdbStartDaemon), "Starts the adb server", "0", StartsServer(),
       DAROKLEIM_CALL(AdbStartDaemon), std::string("With KILL_FIRST 1: ") + kKillNote, true,
       ADB_RESULT_PROTOCOL_FAULT, KillsFirst},
      {DAROKLEIM_FUNCTION(AdbStartDaemonEx), "Starts the adb server, under another name in the log", "0",
       StartsServer(), DAROKLEIM_CALL(AdbStartDaemonEx), std::string("With KILL_FIRST 1: ") + kKillNote, true,
       ADB_RESULT_PROTOCOL_FAULT, KillsFirst},
      {DAROKLEIM_FUNCTION(AdbKillDaemon),
       "Ends the adb server and kills every adb process",
       "--force",
       {Cancel()},
       DAROKLEIM_CALL(AdbKillDaemon),
       kKillNote,
       true,
       0,
       Kills},
      {DAROKLEIM_FUNCTION(AdbRestartDaemon),
       "Kills every adb process and starts the server",
       "--force",
       {},
       DAROKLEIM_CALL(AdbRestartDaemon),
       kKillNote,
       true,
       ADB_RESULT_PROTOCOL_FAULT,
       Kills},
      {DAROKLEIM_FUNCTION(AdbConfigDeviceBusybox),
       "Installs busybox on the device",
       "--busybox busybox-arm64",
       {Serial(), Cancel()},
       DAROKLEIM_CALL(AdbConfigDeviceBusybox),
       "Needs --busybox."},
  };
}

std::vector<SdkFunction> CxxFunctions() {
  return {
      {DAROKLEIM_FUNCTION(GetPropInfo),
       "Reads any system property (C++ only)",
       "ro.build.fingerprint",
       {Serial(),
        Text("prop_name", "Name of the property"),
        {Kind::kChannelBlock, "out", ""},
        {Kind::kLength, "out_len", ""},
        Cancel()},
       DAROKLEIM_CALL(GetPropInfo),
       ""},
      {DAROKLEIM_FUNCTION(AppendMiuiVersionByTimeCode),
       "Appends a build date to a version (C++ only)",
       "1583366400 12.",
       {Text("time_code", "Decimal seconds since 1970-01-01 00:00 UTC"),
        {Kind::kEditedText, "version", "Text to append to; empty when left out"}},
       DAROKLEIM_CALL(AppendMiuiVersionByTimeCode),
       "It runs no command.",
       false},
      {DAROKLEIM_FUNCTION(AdbCheckFileExistedUsingFolderContent),
       "Checks whether a path is in its parent directory (C++ only)",
       "/sdcard/a.txt",
       {Serial(), DevicePath("File or directory"), {Kind::kAnswer, "exists", ""}, Cancel()},
       DAROKLEIM_CALL(AdbCheckFileExistedUsingFolderContent),
       ""},
      {DAROKLEIM_FUNCTION(AdbGetFileCreateTimeFromLs),
       "Reads from its parent directory when a file was last modified (C++ only)",
       "/sdcard/a.txt",
       {Serial(), DevicePath("File"), {Kind::kLargeNumber, "seconds", ""}, Cancel()},
       DAROKLEIM_CALL(AdbGetFileCreateTimeFromLs),
       "The time is in seconds since 1970-01-01 00:00 UTC."},
  };
}

#undef DAROKLEIM_CALL
#undef DAROKLEIM_FUNCTION

std::vector<SdkFunction> AllFunctions() {
  std::vector<SdkFunction> all;
  for (const auto family : {StartFunctions, DeviceFunctions, PropertyFunctions, FileFunctions,
                            DirectoryFunctions, StorageFunctions, PackageFunctions, InstallFunctions,
                            ControlFunctions, PortFunctions, ServerFunctions, CxxFunctions}) {
    for (auto& function : family()) all.push_back(std::move(function));
  }
  return all;
}

}  // namespace

bool IsWord(ParameterKind kind) {
  return kind > Kind::kSerial && kind < Kind::kBufferSize;
}

bool IsRequired(ParameterKind kind) {
  return IsWord(kind) && kind != Kind::kOptionalText && kind != Kind::kEditedText;
}

bool IsOutput(ParameterKind kind) {
  return kind == Kind::kEditedText || kind >= Kind::kOnOutput;
}

const std::vector<SdkFunction>& SdkFunctions() {
  static const std::vector<SdkFunction> functions = AllFunctions();
  return functions;
}

}  // namespace darokleim::cli

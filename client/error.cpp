#include "client/error.h"

#include <cerrno>
#include <cstring>
#include <system_error>

namespace darokleim::client {
namespace {

constexpr std::size_t kMostWords = 64 * 1024;

struct ErrnoCode {
  int linux_number;
  int host_number;
  dk_code code;
};

// The phone numbers errors as Linux does; this computer may be a Mac.
constexpr ErrnoCode kErrnoCodes[] = {
    {1, EPERM, DK_ACCESS_DENIED},  {2, ENOENT, DK_NOT_FOUND},         {13, EACCES, DK_ACCESS_DENIED},
    {17, EEXIST, DK_EXISTS},       {20, ENOTDIR, DK_NOT_A_DIRECTORY}, {21, EISDIR, DK_IS_A_DIRECTORY},
    {28, ENOSPC, DK_NO_SPACE},     {30, EROFS, DK_READ_ONLY},         {36, ENAMETOOLONG, DK_NAME_TOO_LONG},
    {39, ENOTEMPTY, DK_NOT_EMPTY}, {40, ELOOP, DK_LINK_LOOP},         {122, EDQUOT, DK_NO_SPACE},
};

dk_code CodeOfPhoneErrno(int error) {
  for (const ErrnoCode& known : kErrnoCodes) {
    if (known.linux_number == error) return known.code;
  }
  return DK_FILE_ERROR;
}

// The words of an error that both sides know, where the phone's number is one that this computer numbers otherwise.
std::string WordsOfPhoneErrno(int error) {
  for (const ErrnoCode& known : kErrnoCodes) {
    if (known.linux_number == error) return std::generic_category().message(known.host_number);
  }
  return "error " + std::to_string(error);
}

// What the server answers in place of a device. Its texts are fixed but for the serial, which is compared.
dk_code CodeOfRefusal(std::string_view message, std::string_view serial) {
  if (message == "device '" + std::string(serial) + "' not found" ||
      message == "no devices/emulators found" || message == "device not found") {
    return DK_NO_DEVICE;
  }
  if (message.starts_with("more than one device")) return DK_SEVERAL_DEVICES;
  if (message == "device offline" || message == "device still connecting") return DK_DEVICE_OFFLINE;
  if (message == "device still authorizing" || message.starts_with("device unauthorized")) {
    return DK_DEVICE_UNAUTHORIZED;
  }
  if (message.starts_with("insufficient permissions for device") || message.starts_with("no permissions")) {
    return DK_DEVICE_NO_PERMISSIONS;
  }
  return DK_SERVER_REFUSED;
}

struct Meaning {
  dk_code code;
  std::string why;
};

Meaning MeaningOfRefusal(const std::string& message, std::string_view serial) {
  const dk_code code = CodeOfRefusal(message, serial);
  const std::string name = serial.empty() ? std::string("the device") : Shown(serial);
  switch (code) {
    case DK_NO_DEVICE:
      return {code, serial.empty() ? "no device is attached" : name + " is not attached"};
    case DK_SEVERAL_DEVICES:
      return {code, "several devices are attached; name one by its serial"};
    case DK_DEVICE_OFFLINE:
      return {code, name + " does not answer; unplug it and plug it in again"};
    case DK_DEVICE_UNAUTHORIZED:
      return {code, "USB debugging is not allowed for this computer; unlock " + name +
                        " and allow it on its screen"};
    case DK_DEVICE_NO_PERMISSIONS:
      return {code, "this user may not open " + name + "; on Linux udev rules are missing"};
    default:
      return {code, message.empty() ? "the adb server refused, and gave no reason"
                                    : "the adb server refused: " + Shown(message)};
  }
}

Meaning MeaningOf(const adb::Error& error, std::string_view serial) {
  switch (error.code) {
    case adb::ErrorCode::kRefused:
      return MeaningOfRefusal(error.message, serial);
    case adb::ErrorCode::kInvalidAddress:
      return {DK_INVALID_ARGUMENT, "the address of the adb server is not valid: " + Shown(error.message)};
    case adb::ErrorCode::kCannotConnect:
      return {DK_NO_SERVER, "no adb server answers; start one with `adb start-server`"};
    case adb::ErrorCode::kProtocolFault:
      return {DK_SERVER_PROTOCOL, "the answer breaks adb's protocol: " + Shown(error.message)};
    case adb::ErrorCode::kConnectionBroken:
      return {DK_CONNECTION_LOST, "the connection to the device was lost (" + Shown(error.message) + ")"};
    case adb::ErrorCode::kTimedOut:
      return {DK_TIMED_OUT, "the time limit was reached"};
    case adb::ErrorCode::kCancelled:
      return {DK_CANCELLED, "cancelled"};
    case adb::ErrorCode::kStopped:
      return {DK_STOPPED, "stopped by the application"};
    case adb::ErrorCode::kTooLong:
      return {DK_NAME_TOO_LONG, "the path or text is too long for adb"};
    case adb::ErrorCode::kUnsupported:
      return {DK_UNSUPPORTED, "this phone, or its adb server, cannot do that"};
    case adb::ErrorCode::kMisuse:
    case adb::ErrorCode::kSystem:
      break;
  }
  return {DK_SYSTEM_REFUSED, std::generic_category().message(error.system_error)};
}

}  // namespace

Error Failed(dk_code code, std::string_view what, std::string_view why) {
  Error error;
  error.code = code;
  error.message = "Cannot " + std::string(what) + ": " + std::string(why) + ".";
  return error;
}

Error Stopped(std::string_view what) {
  return Failed(DK_STOPPED, what, "stopped by the application");
}

Error InvalidArgument(std::string_view why) {
  Error error;
  error.code = DK_INVALID_ARGUMENT;
  error.message = "Invalid argument: " + std::string(why) + ".";
  return error;
}

Error FromAdb(const adb::Error& error, std::string_view what, std::string_view serial) {
  const Meaning meaning = MeaningOf(error, serial);
  Error made = Failed(meaning.code, what, meaning.why);
  made.system_error = error.system_error;
  made.on_host = error.system_error != 0;
  if (error.code == adb::ErrorCode::kRefused && !error.message.empty())
    made.words = error.message.substr(0, kMostWords);
  return made;
}

dk_code CodeOfErrno(int error) {
  for (const ErrnoCode& known : kErrnoCodes) {
    if (known.host_number == error) return known.code;
  }
  switch (error) {
    case ENOMEM:
      return DK_OUT_OF_MEMORY;
    case EMFILE:
    case ENFILE:
    case EAGAIN:  // no process or thread may be started
      return DK_SYSTEM_REFUSED;
    default:
      return DK_FILE_ERROR;
  }
}

Error FromHostErrno(int error, std::string_view what, std::string_view path) {
  Error made = Failed(CodeOfErrno(error), what, std::generic_category().message(error));
  made.path = std::string(path);
  made.system_error = error;
  made.on_host = true;
  return made;
}

Error FromPhoneErrno(int error, std::string_view what, std::string_view path) {
  Error made = Failed(CodeOfPhoneErrno(error), what, WordsOfPhoneErrno(error));
  made.path = std::string(path);
  made.system_error = error;
  return made;
}

}  // namespace darokleim::client

namespace {

const char* Text(const std::optional<std::string>& text) {
  return text ? text->c_str() : nullptr;
}

// What a call that ran out of memory has in place of an error.
const darokleim::client::Error& OutOfMemory() {
  static const darokleim::client::Error error = [] {
    darokleim::client::Error made;
    made.code = DK_OUT_OF_MEMORY;
    made.message = "Out of memory.";
    return made;
  }();
  return error;
}

}  // namespace

dk_code dk_error_code(const dk_error* error) {
  return error == nullptr ? DK_OUT_OF_MEMORY : error->error.code;
}
const char* dk_error_message(const dk_error* error) {
  return error == nullptr ? OutOfMemory().message.c_str() : error->error.message.c_str();
}
const char* dk_error_path(const dk_error* error) {
  return error == nullptr ? nullptr : Text(error->error.path);
}
const char* dk_error_reason(const dk_error* error) {
  return error == nullptr ? nullptr : Text(error->error.reason);
}
const char* dk_error_words(const dk_error* error) {
  return error == nullptr ? nullptr : Text(error->error.words);
}
int dk_error_errno(const dk_error* error) {
  return error == nullptr ? 0 : error->error.system_error;
}
bool dk_error_on_host(const dk_error* error) {
  return error != nullptr && error->error.on_host;
}
int dk_error_exit_status(const dk_error* error) {
  return error == nullptr ? -1 : error->error.exit_status;
}
void dk_error_free(dk_error* error) {
  delete error;
}

const char* dk_code_name(dk_code code) {
  switch (code) {
    case DK_OK:
      return "DK_OK";
    case DK_CANCELLED:
      return "DK_CANCELLED";
    case DK_TIMED_OUT:
      return "DK_TIMED_OUT";
    case DK_STOPPED:
      return "DK_STOPPED";
    case DK_INVALID_ARGUMENT:
      return "DK_INVALID_ARGUMENT";
    case DK_OUT_OF_MEMORY:
      return "DK_OUT_OF_MEMORY";
    case DK_SYSTEM_REFUSED:
      return "DK_SYSTEM_REFUSED";
    case DK_NO_SERVER:
      return "DK_NO_SERVER";
    case DK_SERVER_PROTOCOL:
      return "DK_SERVER_PROTOCOL";
    case DK_SERVER_REFUSED:
      return "DK_SERVER_REFUSED";
    case DK_NO_DEVICE:
      return "DK_NO_DEVICE";
    case DK_SEVERAL_DEVICES:
      return "DK_SEVERAL_DEVICES";
    case DK_DEVICE_OFFLINE:
      return "DK_DEVICE_OFFLINE";
    case DK_DEVICE_UNAUTHORIZED:
      return "DK_DEVICE_UNAUTHORIZED";
    case DK_DEVICE_NO_PERMISSIONS:
      return "DK_DEVICE_NO_PERMISSIONS";
    case DK_CONNECTION_LOST:
      return "DK_CONNECTION_LOST";
    case DK_NOT_FOUND:
      return "DK_NOT_FOUND";
    case DK_ACCESS_DENIED:
      return "DK_ACCESS_DENIED";
    case DK_NOT_A_DIRECTORY:
      return "DK_NOT_A_DIRECTORY";
    case DK_IS_A_DIRECTORY:
      return "DK_IS_A_DIRECTORY";
    case DK_EXISTS:
      return "DK_EXISTS";
    case DK_NOT_EMPTY:
      return "DK_NOT_EMPTY";
    case DK_NO_SPACE:
      return "DK_NO_SPACE";
    case DK_READ_ONLY:
      return "DK_READ_ONLY";
    case DK_LINK_LOOP:
      return "DK_LINK_LOOP";
    case DK_NAME_TOO_LONG:
      return "DK_NAME_TOO_LONG";
    case DK_UNSAFE_NAME:
      return "DK_UNSAFE_NAME";
    case DK_FILE_ERROR:
      return "DK_FILE_ERROR";
    case DK_CHANGED:
      return "DK_CHANGED";
    case DK_COMMAND_FAILED:
      return "DK_COMMAND_FAILED";
    case DK_INSTALL_FAILED:
      return "DK_INSTALL_FAILED";
    case DK_NO_PACKAGE:
      return "DK_NO_PACKAGE";
    case DK_ANSWER_UNREADABLE:
      return "DK_ANSWER_UNREADABLE";
    case DK_UNSUPPORTED:
      return "DK_UNSUPPORTED";
    case DK_ADDRESS_IN_USE:
      return "DK_ADDRESS_IN_USE";
    case DK_PARTLY_DONE:
      return "DK_PARTLY_DONE";
  }
  return "unknown";
}

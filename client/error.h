// What a call of the client failed with.
#ifndef DAROKLEIM_CLIENT_ERROR_H
#define DAROKLEIM_CLIENT_ERROR_H

#include <optional>
#include <string>
#include <string_view>

#include "adb/result.h"
#include "base/result.h"
#include "base/terminal_text.h"
#include "darokleim/client.h"

namespace darokleim::client {

struct Error {
  dk_code code = DK_OK;
  std::string message;  // one English sentence, safe to show
  std::optional<std::string> path, reason, words;
  int system_error = 0;
  int exit_status = -1;
  bool on_host = false;
};

template <typename T>
using Result = base::Result<T, Error>;
using Status = Result<void>;

// `what` was tried: "list /sdcard". The message becomes "cannot list /sdcard: …".
Error Failed(dk_code code, std::string_view what, std::string_view why);
// A callback of the caller ended the call.
Error Stopped(std::string_view what);
Error InvalidArgument(std::string_view why);

// Of the server's protocol. `serial` is the device that was asked, empty for the server itself: what the server says about
// a device is compared with it.
Error FromAdb(const adb::Error& error, std::string_view what, std::string_view serial);

// Of this computer: errno, and the path that it is about.
Error FromHostErrno(int error, std::string_view what, std::string_view path);
// Of the phone, in Linux numbering.
Error FromPhoneErrno(int error, std::string_view what, std::string_view path);
dk_code CodeOfErrno(int error);

// Text that a terminal or a window may show.
inline std::string Shown(std::string_view bytes) {
  return base::EscapeControls(bytes);
}

}  // namespace darokleim::client

// What the interface hands out.
struct dk_error {
  darokleim::client::Error error;
};

#endif  // DAROKLEIM_CLIENT_ERROR_H

// What a call of the client failed with.
#ifndef DAROKLEIM_CLIENT_ERROR_H
#define DAROKLEIM_CLIENT_ERROR_H

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "adb/result.h"
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

// A value or an error.
template <typename T>
class [[nodiscard]] Result {
 public:
  Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
  Result(Error error) : content_(std::in_place_index<1>, std::move(error)) {}

  bool ok() const { return content_.index() == 0; }
  T& operator*() & { return *std::get_if<0>(&content_); }
  T&& operator*() && { return std::move(*std::get_if<0>(&content_)); }
  T* operator->() { return std::get_if<0>(&content_); }
  const Error& error() const { return *std::get_if<1>(&content_); }
  Error TakeError() { return std::move(*std::get_if<1>(&content_)); }

 private:
  std::variant<T, Error> content_;
};

// Done, or an error.
class [[nodiscard]] Status {
 public:
  Status() = default;
  Status(Error error) : error_(std::move(error)) {}

  bool ok() const { return !error_; }
  const Error& error() const { return *error_; }
  Error TakeError() { return std::move(*error_); }

 private:
  std::optional<Error> error_;
};

// `what` was tried: "list /sdcard". The message becomes "cannot list /sdcard: …".
Error Failed(dk_code code, std::string_view what, std::string_view why);
Error InvalidArgument(std::string_view why);

// Of the server's protocol. `serial` is the device that was asked, empty for the server itself: what the server says about
// a device is compared with it.
Error FromAdb(const adb::Error& error, std::string_view what, std::string_view serial);

// Of this computer: errno, and the path that it is about.
Error FromHostErrno(int error, std::string_view what, std::string_view path);
// Of the phone, in Linux numbering.
Error FromPhoneErrno(int error, std::string_view what, std::string_view path);
dk_code CodeOfErrno(int error);

// Text that a terminal or a window may show: control bytes and what is not UTF-8 as \xHH.
std::string Shown(std::string_view bytes);

}  // namespace darokleim::client

// What the interface hands out.
struct dk_error {
  darokleim::client::Error error;
};

#endif  // DAROKLEIM_CLIENT_ERROR_H

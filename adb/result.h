// Errors as values: what a call gives, or why it gives nothing.
#ifndef DAROKLEIM_ADB_RESULT_H
#define DAROKLEIM_ADB_RESULT_H

#include <cassert>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace darokleim::adb {

enum class ErrorCode {
  kInvalidAddress,    // the address of the server cannot be understood
  kCannotConnect,     // no server accepts connections at its address; `system_error` is the errno
  kRefused,           // the server or the phone answered FAIL; `message` is its text
  kProtocolFault,     // bytes that the protocol does not allow here; `message` says what was expected
  kConnectionBroken,  // the connection ended before the answer did; `message` says what was expected
  kTimedOut,          // the deadline passed
  kCancelled,         // the interrupt was set
  kStopped,           // the caller's own handler returned false
  kTooLong,           // a path or a request exceeds what the protocol can carry; nothing was sent
  kUnsupported,       // the phone's features do not include this form; nothing was sent
  kMisuse,            // the call does not fit the state of its object; nothing was sent
  kSystem,            // the system refused a socket or a wait; `system_error` is the errno
};

struct Error {
  ErrorCode code;
  // The bytes of the server or the phone for kRefused, as they came. Otherwise what was expected, in English.
  std::string message;
  int system_error = 0;  // an errno of this host; 0 where none is known
};

// A value or an Error.
template <typename T>
class [[nodiscard]] Result {
 public:
  Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
  Result(Error error) : content_(std::in_place_index<1>, std::move(error)) {}

  bool ok() const { return content_.index() == 0; }

  // Only of a result that is ok().
  T& operator*() & { return *Pointer(); }
  const T& operator*() const& { return *std::get_if<0>(&content_); }
  T&& operator*() && { return std::move(*Pointer()); }
  T* operator->() { return Pointer(); }
  const T* operator->() const { return std::get_if<0>(&content_); }

  // Only of a result that is not.
  const Error& error() const { return *std::get_if<1>(&content_); }
  Error TakeError() { return std::move(*std::get_if<1>(&content_)); }

 private:
  T* Pointer() {
    assert(ok());
    return std::get_if<0>(&content_);
  }

  std::variant<T, Error> content_;
};

// Success without a value, or an Error.
template <>
class [[nodiscard]] Result<void> {
 public:
  Result() = default;
  Result(Error error) : error_(std::move(error)) {}

  bool ok() const { return !error_; }
  const Error& error() const { return *error_; }
  Error TakeError() { return std::move(*error_); }

 private:
  std::optional<Error> error_;
};

using Status = Result<void>;

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_RESULT_H

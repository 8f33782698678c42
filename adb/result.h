// Errors as values: what a call gives, or why it gives nothing.
#ifndef DAROKLEIM_ADB_RESULT_H
#define DAROKLEIM_ADB_RESULT_H

#include <string>

#include "base/result.h"

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

template <typename T>
using Result = base::Result<T, Error>;
using Status = Result<void>;

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_RESULT_H

// How a command ends early: it throws one of these, and RunTool turns it into a message and an exit status.
#ifndef DAROKLEIM_TOOLS_CLI_ERRORS_H
#define DAROKLEIM_TOOLS_CLI_ERRORS_H

#include <stdexcept>
#include <string>
#include <system_error>

namespace darokleim::cli {

enum ExitStatus : int {
  kExitOk = 0,
  kExitFailed = 1,
  kExitUsage = 2,
  kExitNoDevice = 3,
  kExitCancelled = 130
};

// The message is for people: what could not be done, why, and what helps.
class ToolError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The command line is wrong; the message says where.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// No device can be used: none is attached, or none of them is ready. The message says why.
class NoDeviceError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The command answered no, and has printed it, for example `exists`.
class AnswerIsNo : public std::exception {
 public:
  const char* what() const noexcept override { return "the command answered no"; }
};

// A command of the phone ended with this exit status, which becomes the tool's.
class CommandStatus : public std::exception {
 public:
  explicit CommandStatus(int status) : status_(status) {}
  const char* what() const noexcept override { return "the command on the device failed"; }
  int status() const { return status_; }

 private:
  int status_;
};

// Ctrl-C.
class Cancelled : public std::exception {
 public:
  const char* what() const noexcept override { return "cancelled"; }
};

// Standard output was closed, for example by `| head`. A message about it would not be read either.
class OutputClosed : public std::exception {
 public:
  const char* what() const noexcept override { return "standard output is closed"; }
};

// The system's description of an errno: "Permission denied".
inline std::string SystemErrorText(int error_number) {
  return std::generic_category().message(error_number);
}

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_ERRORS_H

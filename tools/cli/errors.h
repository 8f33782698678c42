// How a command ends early: it throws one of these, and RunTool turns it into a message and an exit status.
#ifndef DAROKLEIM_TOOLS_CLI_ERRORS_H
#define DAROKLEIM_TOOLS_CLI_ERRORS_H

#include <stdexcept>
#include <string>
#include <system_error>

namespace darokleim::cli {

enum ExitStatus : int { kExitOk = 0, kExitFailed = 1, kExitUsage = 2, kExitCancelled = 130 };

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

// The command's answer is no, and it has been printed: `exists`.
class AnswerIsNo : public std::exception {
 public:
  const char* what() const noexcept override { return "the answer is no"; }
};

// Ctrl-C.
class Cancelled : public std::exception {
 public:
  const char* what() const noexcept override { return "cancelled"; }
};

// Nobody reads standard output any more, as after `| head`: nobody would read a message about it either.
class OutputClosed : public std::exception {
 public:
  const char* what() const noexcept override { return "standard output is closed"; }
};

// The system's words for an errno: "Permission denied".
inline std::string SystemErrorText(int error_number) {
  return std::generic_category().message(error_number);
}

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_ERRORS_H

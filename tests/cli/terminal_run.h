#ifndef DAROKLEIM_TESTS_CLI_TERMINAL_RUN_H
#define DAROKLEIM_TESTS_CLI_TERMINAL_RUN_H

#include <memory>
#include <string>

#include "base/unique_fd.h"
#include "tests/support/process.h"

namespace darokleim::cli {

// Runs a program with both of its streams on a terminal of its own; everything is in Outcome::output.
test::Outcome RunOnTerminal(const test::Words& command, const test::Environment& variables);

// A program with all three streams on a terminal of its own, and the person in front of it.
class TerminalSession {
 public:
  TerminalSession(const test::Words& command, const test::Environment& variables);

  void Type(const std::string& keys) const;
  // Whether the text is shown, or soon will be.
  bool Shows(const std::string& text);
  // As a window that is resized says it.
  void Resize(unsigned short rows, unsigned short columns) const;
  void Signal(int signal) const { program_->Signal(signal); }
  // The exit status.
  int Finish() const { return program_->Finish().status; }
  // Whether the terminal passes every key on as it is.
  bool is_raw() const;

 private:
  base::UniqueFd terminal_, other_side_;
  std::unique_ptr<test::HostProcess> program_;
  std::string shown_;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TESTS_CLI_TERMINAL_RUN_H

// Runs the tool with a home, a PATH and an adb of the test's own.
#ifndef DAROKLEIM_TESTS_CLI_TOOL_RUN_H
#define DAROKLEIM_TESTS_CLI_TOOL_RUN_H

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/cli/terminal_run.h"
#include "tests/support/process.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::cli {

using test::Environment;
using test::HostProcess;
using test::Outcome;
using test::Words;

class ToolTest : public testing::Test {
 protected:
  ToolTest();

  // A path in the test's directory.
  std::string File(const std::string& name) const { return directory_.File(name); }

  // Puts a shell script into PATH as adb; body follows the line that names the shell.
  void MakeAdb(const std::string& body) const;
  void MakeExecutable(const std::string& path, const std::string& content) const;

  // For the environment of the tool; an empty value takes the variable out of it.
  void Set(const std::string& variable, const std::string& value);

  // The folder that Run and Start start the tool in; otherwise that of the test.
  void StartIn(const std::string& folder) { folder_ = folder; }

  Outcome Run(const Words& arguments) const;
  // Runs another program in the tool's environment.
  Outcome RunProgram(Words command, const Words& arguments) const;
  std::unique_ptr<HostProcess> Start(const Words& arguments) const;
  // With both of its streams on a terminal; everything is in Outcome::output, with the terminal's line breaks.
  Outcome OnTerminal(const Words& arguments) const;
  // The same with standard input, for a program that a person works with.
  TerminalSession StartOnTerminal(const Words& arguments) const {
    return TerminalSession(Command(arguments), environment_);
  }
  // Runs a line of shell in the tool's environment; $TOOL is the tool.
  Outcome RunShell(const std::string& line) const;

 private:
  Words Command(const Words& arguments) const;

  test::TemporaryDirectory directory_;
  std::string folder_;
  Environment environment_;
};

// An adb that knows `devices` and lists two of them.
inline constexpr char kTwoDevices[] = R"(
[ "$*" = devices ] || exit 1
printf 'List of devices attached\n0123456789ABCDEF\tdevice\nFEDCBA98\tunauthorized\n\n'
)";

// An adb whose device answers every question.
inline constexpr char kModel[] = "echo Pixel\n";

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TESTS_CLI_TOOL_RUN_H

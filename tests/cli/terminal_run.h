// Runs a program on a terminal of its own.
#ifndef DAROKLEIM_TESTS_CLI_TERMINAL_RUN_H
#define DAROKLEIM_TESTS_CLI_TERMINAL_RUN_H

#include "tests/support/process.h"

namespace darokleim::cli {

// What the program printed on both streams, as it reached the terminal, is Outcome::output.
test::Outcome RunOnTerminal(const test::Words& command, const test::Environment& variables);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TESTS_CLI_TERMINAL_RUN_H

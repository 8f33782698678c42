// A subcommand's skeleton: its options are a struct, the command line fills it, a function runs with it.
#ifndef DAROKLEIM_TOOLS_CLI_COMMAND_H
#define DAROKLEIM_TOOLS_CLI_COMMAND_H

#include <CLI/App.hpp>
#include <memory>
#include <string>

#include "tools/cli/tool.h"

namespace darokleim::cli {

struct CommandText {
  const char* name;
  const char* description;  // one line
  const char* footer;       // examples and what else --help says
};

// `describe` binds the members of an Options to the command line, `run` carries the command out.
template <typename Options>
void AddCommand(CLI::App& app, Tool& tool, const CommandText& text,
                void (*describe)(CLI::App& command, Options& options),
                void (*run)(Tool& tool, const Options& options)) {
  auto* command = app.add_subcommand(text.name, text.description);
  command->footer(text.footer);
  const auto options = std::make_shared<Options>();
  describe(*command, *options);
  tool.OnRun(*command, [&tool, options, run] { run(tool, *options); });
}

// A subcommand without options of its own.
inline void AddCommand(CLI::App& app, Tool& tool, const CommandText& text, void (*run)(Tool& tool)) {
  auto* command = app.add_subcommand(text.name, text.description);
  command->footer(text.footer);
  tool.OnRun(*command, [&tool, run] { run(tool); });
}

// A subcommand that does nothing but hold others, one of which must follow.
inline CLI::App& AddCommandGroup(CLI::App& app, const CommandText& text) {
  auto* group = app.add_subcommand(text.name, text.description);
  group->footer(text.footer);
  group->require_subcommand(1);
  return *group;
}

// The --json of a command; `what` describes the document.
inline void AddJsonFlag(CLI::App& command, bool& json, const std::string& what) {
  command.add_flag("--json", json, "Print " + what);
}

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMAND_H

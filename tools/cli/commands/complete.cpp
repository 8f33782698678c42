// darokleim complete: what the completions of bash and zsh ask. Not in --help.
#include <string>
#include <vector>

#include "tools/cli/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/completion.h"

namespace darokleim::cli {

void AddCompleteCommand(CLI::App& app, Tool& tool) {
  auto* command = app.add_subcommand("complete", "Print what may stand at the end of a command line");
  command->group("");
  const auto words = std::make_shared<std::vector<std::string>>();
  command->add_option("WORD", *words, "The words behind the tool's name, the last of them unfinished");
  tool.OnRun(*command, [&app, &tool, words] {
    std::string text;
    for (const auto& line : Completions(app, tool, *words)) text += line + "\n";
    tool.output().Write(text);
  });
}

}  // namespace darokleim::cli

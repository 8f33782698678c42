// What cp and mv have in common.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_RELOCATION_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_RELOCATION_H

#include <functional>
#include <string>
#include <vector>

#include "tools/cli/phone_path.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {

struct Relocation {
  std::vector<PhonePath> sources;
  PhonePath target;
};

void DescribeRelocation(Command& command, Relocation& relocation);

// Does the work for each source: `verb` is "copy" or "move". The target is a folder to put the sources in when it is one, or is
// written with a slash at its end. Nothing is put into itself.
void Relocate(Tool& tool, const Relocation& relocation, const std::string& verb,
              const std::function<void(const PhonePath& source, const std::string& target)>& work);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_RELOCATION_H

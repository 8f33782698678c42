// What push and pull have in common.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_TRANSFER_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_TRANSFER_H

#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {

struct TransferPolicy {
  bool update = false;
  bool no_clobber = false;
};

// --update and --no-clobber.
void DescribePolicy(Command& command, TransferPolicy& policy);

// What a path that is to be put into a folder is called there, and whether its content is meant (`.`, `DIR/.`).
struct SourceName {
  std::string name;
  bool is_content = false;
};

enum class Direction { kPush, kPull };

// Transfers the items, shows progress, reports each file's error and goes on, and reports or documents the counts in the end.
// Throws ToolError before anything is done when two sources would become one file.
void Transfer(Tool& tool, Direction direction, const std::vector<dk::Item>& items,
              const TransferPolicy& policy);

// Prints or documents what was done. `is_broken`: not all was tried.
void ReportCounts(Tool& tool, Direction direction, const dk_summary& summary, double seconds, bool is_broken);

// Below the folder, or the folder itself for its content.
std::string TargetIn(const std::string& folder, const SourceName& source);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_TRANSFER_H

#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_FILE_MODE_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_FILE_MODE_H

#include <cstdint>
#include <string>

#include "tools/cli/command_line/argument_types.h"

namespace darokleim::cli {

// Permissions as chmod takes them: 644, a+x, u=rw,go=r.
struct FileMode {
  static constexpr ValueKind kKind = ValueKind::kText;
  static FileMode Parse(const std::string& word);

  bool IsAbsolute() const { return text.front() >= '0' && text.front() <= '7'; }
  // The permissions of a file that had `before`; a folder may get x by X.
  std::uint32_t AppliedTo(std::uint32_t before, bool is_folder) const;

  std::string text = "0";
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_FILE_MODE_H

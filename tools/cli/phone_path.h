#ifndef DAROKLEIM_TOOLS_CLI_PHONE_PATH_H
#define DAROKLEIM_TOOLS_CLI_PHONE_PATH_H

#include <string>
#include <string_view>

#include "tools/cli/command_line/argument_types.h"

namespace darokleim::cli {

// A path on the phone: absolute, bytes in no particular encoding, without slashes at its end or several in a row.
struct PhonePath {
  static constexpr ValueKind kKind = ValueKind::kDevicePath;
  static PhonePath Parse(const std::string& word);

  bool IsRoot() const { return text == "/"; }
  // What follows the last slash; empty for the root.
  std::string Name() const { return text.substr(text.rfind('/') + 1); }
  // The path of what has this name in the folder.
  std::string Child(std::string_view name) const;

  std::string text = "/";
  bool names_a_folder = false;     // written with a slash or /. at its end
  bool names_its_content = false;  // written with /. at its end
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_PHONE_PATH_H

#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_TYPED_TEXT_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_TYPED_TEXT_H

#include <string>
#include <vector>

namespace darokleim::cli {

// The texts to give to AdbInputStringToDevice one after the other, so that the device types `text`: its `input` reads
// "%s" as a space, and quotes are removed on the way there. Throws ToolError for an empty text and for characters that
// `input` cannot type: it knows printable ASCII only.
std::vector<std::string> PiecesToType(const std::string& text);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_TYPED_TEXT_H

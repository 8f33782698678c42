// What the device's stat prints.
#ifndef DAROKLEIM_SRC_FILESYSTEM_STAT_OUTPUT_H
#define DAROKLEIM_SRC_FILESYSTEM_STAT_OUTPUT_H

#include <optional>
#include <string_view>

namespace darokleim::sdk {

// The size in bytes in the first line that matches
//     ^\s+Size:\s+(\d+)(.*)$
// Lines end in CR LF. A text with LF alone is one line, which does not match.
std::optional<unsigned long long> SizeInStatOutput(std::string_view output);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_STAT_OUTPUT_H

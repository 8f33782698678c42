// What the device's stat prints.
#ifndef DAROKLEIM_SRC_FILESYSTEM_STAT_OUTPUT_H
#define DAROKLEIM_SRC_FILESYSTEM_STAT_OUTPUT_H

#include <optional>
#include <string_view>

namespace darokleim::sdk {

// The size in bytes that the first line of the form
//     ^\s+Size:\s+(\d+)(.*)$
// gives. Lines end in CR LF; without any, the whole text is one line, which the expression then refuses.
std::optional<unsigned long long> SizeInStatOutput(std::string_view output);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_STAT_OUTPUT_H

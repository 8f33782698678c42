// What the device's df prints.
#ifndef DAROKLEIM_SRC_FILESYSTEM_DF_OUTPUT_H
#define DAROKLEIM_SRC_FILESYSTEM_DF_OUTPUT_H

#include <optional>
#include <string_view>

namespace darokleim::sdk {

// The free bytes in the rows of a table without its heading: the fourth word, where a blank alone ends a
// word. Nothing for fewer words.
std::optional<unsigned long long> FreeBytes(std::string_view rows);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_DF_OUTPUT_H

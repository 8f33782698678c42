#ifndef DAROKLEIM_SRC_FILESYSTEM_STORAGE_OUTPUT_H
#define DAROKLEIM_SRC_FILESYSTEM_STORAGE_OUTPUT_H

// What df and ls print about a device's storage.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace darokleim::sdk {

// The free bytes in the rows that df prints, without the heading: the fourth word, where only a space ends a
// word. Nothing for fewer words.
std::optional<unsigned long long> FreeBytes(std::string_view rows);

// The two functions below read the output of `ls -l /storage`. Lines end in LF; a carriage return
// before it stays in the names.

// The paths of all volumes, internal and cards, one for each line that names one, duplicates included.
std::vector<std::string> VolumePaths(std::string_view listing);

// The path of the first card, empty without one.
std::string CardPath(std::string_view listing);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_STORAGE_OUTPUT_H

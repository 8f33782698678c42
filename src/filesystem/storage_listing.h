// The storage volumes in what `ls -l /storage` prints. Lines end in LF; a carriage return before it stays in
// the names.
#ifndef DAROKLEIM_SRC_FILESYSTEM_STORAGE_LISTING_H
#define DAROKLEIM_SRC_FILESYSTEM_STORAGE_LISTING_H

#include <string>
#include <string_view>
#include <vector>

namespace darokleim::sdk {

// The paths of all volumes, internal and cards, one for each line that names one; none is sorted out.
std::vector<std::string> VolumePaths(std::string_view listing);

// The path of the first card, empty without one.
std::string CardPath(std::string_view listing);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_STORAGE_LISTING_H

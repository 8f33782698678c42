#include "src/filesystem/df_output.h"

#include <string>

#include "src/core/string_helper.h"
#include "src/core/text.h"

namespace darokleim::sdk {

std::optional<unsigned long long> FreeBytes(std::string_view rows) {
  constexpr int kAvailableColumn = 3;
  std::optional<unsigned long long> bytes;
  int column = 0;
  ForEachPiece(rows, " ", [&](std::string_view piece) {
    if (column++ < kAvailableColumn) return true;
    bytes = StringHelper::StorageToNumber(std::string(piece));
    return false;
  });
  return bytes;
}

}  // namespace darokleim::sdk

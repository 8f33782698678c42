#include "filesystem/df_output.h"

#include <string>

#include "core/string_helper.h"
#include "core/text.h"

namespace darokleim {

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

}  // namespace darokleim

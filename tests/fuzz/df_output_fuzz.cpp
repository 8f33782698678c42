// FreeBytes is the fourth piece of the text split at spaces.
#include <vector>

#include "src/core/string_helper.h"
#include "src/filesystem/storage_output.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  const std::string rows = Text(data, size);
  std::vector<std::string> pieces;
  StringHelper::StringSplit(pieces, rows, " ");
  const auto found = FreeBytes(rows);
  Require(found.has_value() == (pieces.size() > 3));
  if (found) Require(*found == StringHelper::StorageToNumber(pieces[3]));
  return 0;
}

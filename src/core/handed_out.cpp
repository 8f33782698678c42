#include "core/handed_out.h"

#include <algorithm>

#include "darokleim.h"

namespace darokleim {

char* NewTerminatedBlock(std::string_view text) {
  char* block = new char[text.size() + 1];
  *std::copy(text.begin(), text.end(), block) = '\0';
  return block;
}

}  // namespace darokleim

void AdbFreeResource(char** buffer) {
  delete[] * buffer;
  *buffer = nullptr;
}

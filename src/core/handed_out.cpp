#include "src/core/handed_out.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "darokleim.h"

namespace darokleim::sdk {

char* NewTerminatedBlock(std::string_view text) {
  char* block = new char[text.size() + 1];
  *std::copy(text.begin(), text.end(), block) = '\0';
  return block;
}

char* NewBlock(std::string_view bytes) {
  char* block = new char[bytes.size()];
  std::copy(bytes.begin(), bytes.end(), block);
  return block;
}

void HandOut(std::string_view text, char** block, int* length) {
  if (text.size() > std::numeric_limits<int>::max()) throw std::length_error("a text to hand out");
  *block = NewTerminatedBlock(text);
  *length = static_cast<int>(text.size());
}

}  // namespace darokleim::sdk

void AdbFreeResource(char** buffer) {
  delete[] * buffer;
  *buffer = nullptr;
}

#include "src/core/caller_output.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "darokleim.h"

namespace {

constexpr bool IsEndingSpace(char c) {
  return c == '\0' || c == '\t' || c == '\n' || c == '\r' || c == ' ';
}

}  // namespace

char* RemoveEndingSpace(char* text, int length) {
  while (length > 0 && IsEndingSpace(text[length - 1])) text[--length] = '\0';
  return text + length - 1;
}

namespace darokleim::sdk {

int FillCallerBuffer(std::string_view text, char* buffer, int capacity, std::size_t most) {
  const std::size_t room = capacity < 0 ? 0 : static_cast<std::size_t>(capacity);
  if (room > 0) {
    const std::string_view copied = text.substr(0, std::min(most, room - 1));
    *std::copy(copied.begin(), copied.end(), buffer) = '\0';
    RemoveEndingSpace(buffer, static_cast<int>(copied.size()));
  }
  const bool fits = capacity >= 0 && text.size() <= room;
  return fits ? ADB_RESULT_OK : ADB_RESULT_BUFFER_TOO_SMALL;
}

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

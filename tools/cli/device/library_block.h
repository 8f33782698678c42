#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_LIBRARY_BLOCK_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_LIBRARY_BLOCK_H

#include <darokleim.h>

#include <string_view>

namespace darokleim::cli {

// Receives a block of the library through a `char**` and an `int*`, and frees it at its end.
class LibraryBlock {
 public:
  LibraryBlock() = default;
  ~LibraryBlock() { AdbFreeResource(&text_); }
  LibraryBlock(const LibraryBlock&) = delete;
  LibraryBlock& operator=(const LibraryBlock&) = delete;

  char** text() { return &text_; }
  int* length() { return &length_; }

  // What a zero-terminated block holds; empty without one.
  std::string_view Text() const { return text_ == nullptr ? std::string_view() : std::string_view(text_); }
  // What a block without a zero at its end holds.
  std::string_view Bytes() const {
    return text_ == nullptr ? std::string_view() : std::string_view(text_, static_cast<std::size_t>(length_));
  }

 private:
  char* text_ = nullptr;
  int length_ = 0;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_LIBRARY_BLOCK_H

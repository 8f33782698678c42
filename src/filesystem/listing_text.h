// What the parsers of directory listings share.
#ifndef DAROKLEIM_SRC_FILESYSTEM_LISTING_TEXT_H
#define DAROKLEIM_SRC_FILESYSTEM_LISTING_TEXT_H

#include <stdexcept>
#include <string>
#include <string_view>

namespace darokleim::sdk {

// The caller's text, not copied. A negative length is a length error.
inline std::string_view ListingText(const char* text, int length) {
  if (length < 0) throw std::length_error("a listing of negative length");
  return {text, static_cast<std::size_t>(length)};
}

// directory, "/" and name, whether or not directory ends in a slash already; allocated at its exact length.
inline std::string JoinListed(std::string_view directory, std::string_view name) {
  std::string path(directory.size() + 1 + name.size(), '/');
  directory.copy(path.data(), directory.size());
  name.copy(path.data() + directory.size() + 1, name.size());
  return path;
}

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_LISTING_TEXT_H

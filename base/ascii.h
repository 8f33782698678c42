// Character classes that do not depend on the host's locale.
#ifndef DAROKLEIM_BASE_ASCII_H
#define DAROKLEIM_BASE_ASCII_H

namespace darokleim::base {

constexpr bool IsAsciiLetterOrDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

}  // namespace darokleim::base

#endif  // DAROKLEIM_BASE_ASCII_H

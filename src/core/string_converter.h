// Conversions between UTF-8, wide characters (32 bits, one for each UTF-8 sequence) and the text encoding of
// the process's locale.
#ifndef DAROKLEIM_SRC_CORE_STRING_CONVERTER_H
#define DAROKLEIM_SRC_CORE_STRING_CONVERTER_H

#include <string>

class StringConverter {
 public:
  // As mbstowcs and wcstombs do, up to the first zero; a text that the locale cannot express gives an empty
  // one.
  static std::wstring AnsiToWide(const std::string& text);
  static std::string WideToAnsi(const std::wstring& text);

  // One wide character for each sequence of one to six bytes, also for one that is longer than it need be. A
  // byte that belongs to no whole sequence becomes a wide character of its own, above the largest that six
  // bytes can say, and WideToUTF8, which writes the shortest sequences, turns it back into that byte.
  static std::wstring UTF8ToWide(const std::string& text);
  static std::string WideToUTF8(const std::wstring& text);

  static std::string UTF8ToAnsi(const std::string& text);
  static std::string AnsiToUTF8(const std::string& text);
};

#endif  // DAROKLEIM_SRC_CORE_STRING_CONVERTER_H

// Conversions between UTF-8, wide characters (32 bits, one for each UTF-8 sequence) and the text encoding of
// the process's locale. Part of the interface of the library's archive; nothing here calls them.
#ifndef DAROKLEIM_SRC_CORE_STRING_CONVERTER_H
#define DAROKLEIM_SRC_CORE_STRING_CONVERTER_H

#include <string>

class StringConverter {
 public:
  // As mbstowcs and wcstombs do, up to the first zero; empty for a text that the locale cannot express.
  static std::wstring AnsiToWide(const std::string& text);
  static std::string WideToAnsi(const std::wstring& text);

  // One wide character for each sequence of one to six bytes, overlong sequences included. A byte that is not part
  // of a complete sequence becomes a wide character above the largest value of six bytes. WideToUTF8 converts it back
  // into that byte; it writes the shortest sequence for every other character.
  static std::wstring UTF8ToWide(const std::string& text);
  static std::string WideToUTF8(const std::wstring& text);

  static std::string UTF8ToAnsi(const std::string& text);
  static std::string AnsiToUTF8(const std::string& text);
};

#endif  // DAROKLEIM_SRC_CORE_STRING_CONVERTER_H

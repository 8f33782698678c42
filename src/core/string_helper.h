// Text operations for the parsers of adb's output. Several differ from common functions of the same name; callers rely
// on the differences. StringReplace and the trims are part of the interface of the library's archive; nothing here
// calls them.
#ifndef DAROKLEIM_SRC_CORE_STRING_HELPER_H
#define DAROKLEIM_SRC_CORE_STRING_HELPER_H

#include <string>
#include <vector>

class StringHelper {
 public:
  // Appends the pieces of text between separators (a whole string, not a set of characters) to pieces,
  // which is not cleared; empty pieces are dropped. Returns how many were appended.
  static long StringSplit(std::vector<std::string>& pieces, const std::string& text,
                          const std::string& separator);

  // Replaces from with to, and continues *at* each replacement, not after it: if the replacement, alone or with the
  // text after it, contains from, that is replaced again. Does not end when to begins with from. Returns the new
  // length.
  static long StringReplace(std::string& text, std::string from, std::string to);

  // Remove the run of c at one end and return the remaining length.
  static long StringTrimLeft(std::string& text, char c);
  static long StringTrimRight(std::string& text, char c);

  // Bytes of a size as the device's df prints it: "3.8G", "512M", "100" (kibibytes). A letter counts
  // at any position, G before M; without either the unit is 1024. A text without a number and a negative fraction
  // give 0.
  static unsigned long long StorageToNumber(const std::string& size);
};

// Replaces every occurrence of from with to, and continues after each replacement.
void replace(std::string& text, const std::string& from, const std::string& to);

#endif  // DAROKLEIM_SRC_CORE_STRING_HELPER_H

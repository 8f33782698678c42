// Text operations that the parsers of adb's output share. Several differ from what their names suggest
// elsewhere; callers rely on the differences.
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

  // Replaces from by to, going on *at* each replacement, not after it: a replacement that makes from anew,
  // alone or with the text behind it, is replaced again. Does not end when to begins with from.
  // Returns the new length.
  static long StringReplace(std::string& text, std::string from, std::string to);

  // Remove the run of c at one end; return the length that is left.
  static long StringTrimLeft(std::string& text, char c);
  static long StringTrimRight(std::string& text, char c);

  // Bytes of a size as the device's df prints it: "3.8G", "512M", "100" (kibibytes). A letter counts
  // wherever it stands, G before M; without either the unit is 1024. No number reads as 0, a negative
  // fraction as 0.
  static unsigned long long StorageToNumber(const std::string& size);
};

// Replaces every occurrence of from by to, going on after each replacement.
void replace(std::string& text, const std::string& from, const std::string& to);

#endif  // DAROKLEIM_SRC_CORE_STRING_HELPER_H

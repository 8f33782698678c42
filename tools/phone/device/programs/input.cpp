#include <cstdio>
#include <string>

#include "tools/phone/device/programs/programs.h"
#include "tools/phone/device/properties.h"
#include "tools/phone/device/records.h"

namespace darokleim::phone {

namespace {

// The text as the focused field gets it: "%s" is how a space is written.
std::string Typed(const std::string& text) {
  std::string typed;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 2, "%s") == 0) {
      typed += ' ';
      ++i;
    } else {
      typed += text[i];
    }
  }
  return typed;
}

int Refuse(const std::string& command) {
  std::fprintf(stderr, "Error: Invalid arguments for command: %s\n", command.c_str());
  std::fprintf(stderr, "Usage: input [<source>] <command> [<arg>...]\n");
  return 1;
}

}  // namespace

// What is typed, pressed and touched is recorded in the order it comes.
int RunInput(const Words& words) {
  if (words.empty()) return Refuse("");
  const std::string& command = words[0];
  if (command == "text") {
    // Before Android 7 a second word is an error; later ones ignore it.
    if (words.size() < 2 || (IsLegacyPhone() && words.size() > 2)) return Refuse(command);
    AppendRecord(kInputRecord, "text " + Typed(words[1]));
    return 0;
  }
  const size_t least = command == "keyevent" ? 2 : command == "tap" ? 3 : command == "swipe" ? 5 : 0;
  if (least == 0 || words.size() < least) return Refuse(command);
  std::string line = command;
  for (size_t i = 1; i < words.size(); ++i) line += " " + words[i];
  AppendRecord(kInputRecord, line);
  return 0;
}

}  // namespace darokleim::phone

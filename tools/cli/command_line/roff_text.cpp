#include "tools/cli/command_line/roff_text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "base/utf8.h"

namespace darokleim::cli {
namespace {

// Of a whole UTF-8 character of several bytes.
std::uint32_t CodePoint(std::string_view character) {
  const auto byte = [character](std::size_t i) { return static_cast<unsigned char>(character[i]); };
  std::uint32_t code = byte(0) & (0xffu >> (character.size() + 1));
  for (std::size_t i = 1; i < character.size(); ++i) code = code << 6 | (byte(i) & 0x3fu);
  return code;
}

std::string Escaped(std::string_view character) {
  if (character == "\\") return "\\e";
  if (character == "-") return "\\-";
  if (character == "'") return "\\(aq";
  if (character == "`") return "\\(ga";
  if (character == "^") return "\\(ha";
  if (character == "~") return "\\(ti";
  if (character.size() == 1) return std::string(character);
  char code[16];
  std::snprintf(code, sizeof code, "\\[u%04X]", CodePoint(character));
  return code;
}

std::string_view TakeLine(std::string_view* text) {
  const auto line = text->substr(0, text->find('\n'));
  text->remove_prefix(std::min(line.size() + 1, text->size()));
  return line;
}

bool IsLaidOut(std::string_view line) {
  return line.substr(0, 2) == "  ";
}

}  // namespace

std::string RoffLine(std::string_view text) {
  std::string line = text.substr(0, 1) == "." ? "\\&" : "";
  while (!text.empty()) {
    const std::size_t length = std::max<std::size_t>(base::LengthOfUtf8Character(text), 1);
    line += Escaped(text.substr(0, length));
    text.remove_prefix(length);
  }
  return line;
}

std::string RoffText(std::string_view text) {
  std::string roff;
  bool laid_out = false;
  bool new_paragraph = false;
  while (!text.empty()) {
    const auto line = TakeLine(&text);
    if (IsLaidOut(line) != laid_out) {
      laid_out = !laid_out;
      roff += laid_out ? ".PP\n.EX\n" : ".EE\n";
      new_paragraph = !laid_out;
    }
    if (line.empty()) {
      new_paragraph = true;
      continue;
    }
    if (new_paragraph && !laid_out) roff += ".PP\n";
    new_paragraph = false;
    roff += RoffLine(line) + "\n";
  }
  return laid_out ? roff + ".EE\n" : roff;
}

}  // namespace darokleim::cli

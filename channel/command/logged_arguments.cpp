#include "channel/command/logged_arguments.h"

#include "base/ascii.h"
#include "channel/command/word_splitter.h"

namespace darokleim::channel {
namespace {

constexpr std::string_view kInput = "input";
constexpr std::string_view kText = "text";
constexpr std::string_view kMask = " ***";

// The characters of a word of the device's shell that can be part of a name or an option.
bool IsPartOfName(char c) {
  return base::IsAsciiLetterOrDigit(c) || c == '-' || c == '_' || c == '.';
}

// Whether name is a whole name at this position of text.
bool IsNameAt(std::string_view text, size_t position, std::string_view name) {
  const size_t end = position + name.size();
  return text.substr(position, name.size()) == name && (position == 0 || !IsPartOfName(text[position - 1])) &&
         (end == text.size() || !IsPartOfName(text[end]));
}

bool IsQuoteOrEscape(char c) {
  return c == '\'' || c == '"' || c == '\\';
}

// Where the word `text` ends that follows `input` at this position, perhaps after a source (`keyboard`) or options (`-d 0`);
// npos when another word does.
size_t EndOfText(std::string_view text, size_t position) {
  while (position < text.size()) {
    const size_t word = text.find_first_not_of(" \t\n'\"\\", position);
    if (word == std::string_view::npos || !IsPartOfName(text[word])) return std::string_view::npos;
    if (IsNameAt(text, word, kText)) return word + kText.size();
    position = word;
    while (position < text.size() && (IsPartOfName(text[position]) || IsQuoteOrEscape(text[position])))
      ++position;
  }
  return std::string_view::npos;
}

// Where the first text that the device types begins; npos without one.
size_t BeginOfTypedText(std::string_view text) {
  for (size_t at = text.find(kInput); at != std::string_view::npos; at = text.find(kInput, at + 1)) {
    if (!IsNameAt(text, at, kInput)) continue;
    const size_t end = EndOfText(text, at + kInput.size());
    if (end != std::string_view::npos) return end;
  }
  return std::string_view::npos;
}

// The words in one text, as adb hands them to the device.
std::string JoinWords(std::string_view arguments) {
  std::string text;
  for (const Word& word : SplitWords(arguments)) {
    if (!text.empty()) text += ' ';
    text += word.text;
  }
  return text;
}

}  // namespace

std::string LoggedArguments(std::string_view arguments) {
  const std::string text = JoinWords(arguments);
  const size_t typed = BeginOfTypedText(text);
  if (typed == std::string_view::npos) return std::string(arguments);
  return text.substr(0, typed).append(kMask);
}

}  // namespace darokleim::channel

// Any argument text splits, and what the pieces are joined from can be checked: quoting each word and splitting
// again gives the same words.
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz.h"
#include "platform/channel/command.h"
#include "platform/channel/device_quoting.h"
#include "platform/channel/word_splitter.h"

using namespace darokleim::channel;
using darokleim::Require;

namespace {

void RequireThatQuotedWordsSplitBack(const std::vector<Word>& words) {
  std::string text;
  for (const Word& word : words) text += ' ' + QuoteForDevice(word.text);
  const std::vector<Word> again = SplitWords(text);
  Require(again.size() == words.size());
  for (size_t i = 0; i < words.size(); ++i) Require(again[i].text == words[i].text && again[i].quoted);
}

void RequireThatDoubledQuotesKeepAPath(const std::string& path) {
  if (path.find("\"\"") != std::string::npos || path.find_first_of(kBlanks) == 0) return;
  if (!path.empty() && (path.front() == '"' || path.back() == '"')) return;
  const Command command = ReadCommand("shell rm \"\"" + path + "\"\"", Assist::kOn);
  Require(command.words.size() == 3 && command.words[2] == QuoteForDevice(path));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text = darokleim::Text(data, size);
  text.resize(std::min(text.find('\0'), text.size()));  // an argument text ends at its zero byte

  const std::vector<Word> words = SplitWords(text);
  size_t length = 0;
  for (const Word& word : words) length += word.text.size();
  Require(length + words.size() <= text.size() + 1);
  RequireThatQuotedWordsSplitBack(words);

  for (const Assist assist : {Assist::kOff, Assist::kOn}) {
    for (const char* prefix : {"", " -s X shell "}) ReadCommand(prefix + text, assist);
  }
  RequireThatDoubledQuotesKeepAPath(text);
  return 0;
}

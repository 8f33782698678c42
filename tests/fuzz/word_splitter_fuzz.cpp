// Any argument text can be split, and quoting each word and splitting again gives the same words.
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "base/shell_quoting.h"
#include "channel/command/command.h"
#include "channel/command/word_splitter.h"
#include "tests/fuzz/fuzz.h"

using namespace darokleim::channel;
using darokleim::sdk::Require;

namespace {

void RequireThatQuotedWordsSplitBack(const std::vector<Word>& words) {
  std::string text;
  for (const Word& word : words) text += ' ' + darokleim::base::QuoteForShell(word.text);
  const std::vector<Word> again = SplitWords(text);
  Require(again.size() == words.size());
  for (size_t i = 0; i < words.size(); ++i) Require(again[i].text == words[i].text && again[i].quoted);
}

// Any path, quotes included; but quotes around the whole path are removed where the SDK uses a single pair.
void RequireThatAPathStaysWhole(const std::string& path) {
  for (const char* quotes : {"shell ls \"\"", "shell stat -c %Y \"\""}) {
    Require(ReadCommand(quotes + path + "\"\"", Assist::kOn).words.back() ==
            darokleim::base::QuoteForShell(path));
  }
  for (const char* command : {"ls", "restore"}) {
    Require(ReadCommand(command + (" \"" + path) + '"', Assist::kOn).words.back() == path);
  }
  std::string unquoted = path;
  RemoveOwnQuotes(&unquoted);
  Require(ReadCommand("shell rm \"" + path + '"', Assist::kOn).words.back() ==
          darokleim::base::QuoteForShell(unquoted));
}

// Two paths, where the text says where the first one ends.
void RequireThatTwoPathsStayWhole(const std::string& path) {
  if (("\"" + path + "\"").find("\" \"") != std::string::npos) return;
  const Command command = ReadCommand("push --sync \"" + path + "\" \"/" + path + '"', Assist::kOn);
  Require(command.words.size() == 4 && command.words[2] == path && command.words[3] == '/' + path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text = darokleim::sdk::Text(data, size);
  text.resize(std::min(text.find('\0'), text.size()));  // an argument text ends at its zero byte

  const std::vector<Word> words = SplitWords(text);
  size_t length = 0;
  for (const Word& word : words) length += word.text.size();
  Require(length + words.size() <= text.size() + 1);
  RequireThatQuotedWordsSplitBack(words);

  for (const Assist assist : {Assist::kOff, Assist::kOn}) {
    for (const char* prefix : {"", " -s X shell "}) ReadCommand(prefix + text, assist);
  }
  RequireThatAPathStaysWhole(text);
  RequireThatTwoPathsStayWhole(text);
  return 0;
}

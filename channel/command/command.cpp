#include "channel/command/command.h"

#include <algorithm>

#include "base/shell_quoting.h"
#include "channel/command/adb_commands.h"

namespace darokleim::channel {
namespace {

constexpr std::string_view kShell = "shell";

enum class OptionForm { kNone, kAlone, kTakesNextWord };

// Options that adb takes before its command word. Those with a value take it in the same word or as the next.
OptionForm FormOfAdbOption(std::string_view word) {
  if (word.size() < 2 || word[0] != '-') return OptionForm::kNone;
  for (std::string_view with_value : {"-s", "-t", "-p", "-H", "-P", "-L", "--one-device", "--reply-fd"}) {
    if (word == with_value) return OptionForm::kTakesNextWord;
  }
  return OptionForm::kAlone;
}

// A command word that holds blanks, as in `'shell date +"%H:%M"'`, is the command and its text.
void SplitCommandWord(Command* command) {
  std::string& word = command->words.back();
  word.erase(0, std::min(word.find_first_not_of(kBlanks), word.size()));
  const size_t blank = word.find_first_of(kBlanks);
  command->name = word.substr(0, blank);
  if (blank == std::string::npos) return;
  std::string text = word.substr(blank + 1);
  word.resize(blank);
  if (!text.empty()) command->words.push_back(std::move(text));
}

// Up to and with the command word. False when the text ends before it.
bool ReadUpToCommandWord(WordSplitter* splitter, Command* command) {
  Word word;
  while (splitter->Next(&word)) {
    const OptionForm form = FormOfAdbOption(word.text);
    command->words.push_back(std::move(word.text));
    if (form == OptionForm::kNone) {
      SplitCommandWord(command);
      return true;
    }
    if (form == OptionForm::kTakesNextWord && splitter->Next(&word)) {
      command->words.push_back(std::move(word.text));
    }
  }
  return false;
}

void ReadPlainly(WordSplitter* splitter, std::vector<Word>* words) {
  for (Word word; splitter->Next(&word);) words->push_back(std::move(word));
}

// Where the SDK puts paths between quotes, they are read as they are; everything else by the rules. words: what
// came before, of a shell command.
void ReadAsMeant(WordSplitter* splitter, const Command& command, std::vector<Word>* words) {
  Word word;
  while (!splitter->AtQuote() && splitter->Next(&word)) words->push_back(std::move(word));
  const bool shell = command.name == kShell;
  const OperandForm form = shell ? FindDeviceCommand(*words).operands : FindAdbOperands(command.name);
  const size_t first = words->size();
  splitter->NextOperands(form, words);
  if (shell && form.quotes.opening == kDoubleQuotes.opening) {
    for (size_t i = first; i < words->size(); ++i) RemoveOwnQuotes(&(*words)[i].text);
  }
  while (shell ? splitter->NextAsMeant(&word) : splitter->Next(&word)) words->push_back(std::move(word));
}

}  // namespace

Command ReadCommand(std::string_view arguments, Assist assist) {
  Command command;
  WordSplitter splitter(arguments);
  if (!ReadUpToCommandWord(&splitter, &command)) return command;

  const bool shell = command.name == kShell;
  const bool assisted = assist == Assist::kOn;
  std::vector<Word> words;
  if (shell && command.words.back() != command.name) words = SplitWords(command.words.back());
  const size_t first = words.size();
  if (assisted) {
    ReadAsMeant(&splitter, command, &words);
  } else {
    ReadPlainly(&splitter, &words);
  }

  if (shell) command.device = FindDeviceCommand(words);
  if (shell && assisted) command.line_ends = command.device.line_ends;
  for (size_t i = first; i < words.size(); ++i) {
    const bool quote = shell && assisted && words[i].quoted;
    command.words.push_back(quote ? base::QuoteForShell(words[i].text) : std::move(words[i].text));
  }
  return command;
}

}  // namespace darokleim::channel

#include "channel/command/command.h"

#include <algorithm>

#include "base/shell_quoting.h"

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

// How the SDK writes the paths of adb's own commands; kNone for a command without paths.
OperandForm FindAdbOperands(std::string_view command) {
  constexpr struct {
    std::string_view name;
    OperandCount paths;
  } kCommandsWithPaths[] = {
      {"backup", OperandCount::kOne}, {"install-multiple", OperandCount::kMany},
      {"ls", OperandCount::kOne},     {"pull", OperandCount::kTwo},
      {"push", OperandCount::kTwo},   {"restore", OperandCount::kOne},
  };
  for (const auto& known : kCommandsWithPaths) {
    if (known.name == command) return {known.paths, kDoubleQuotes};
  }
  return {};
}

// A command word that holds spaces, as in `'shell date +"%H:%M"'`, is the command and its text.
void SplitCommandWord(Command* command) {
  std::string& word = command->words.back();
  word.erase(0, std::min(word.find_first_not_of(kWhitespace), word.size()));
  const size_t space = word.find_first_of(kWhitespace);
  command->name = word.substr(0, space);
  if (space == std::string::npos) return;
  std::string text = word.substr(space + 1);
  word.resize(space);
  if (!text.empty()) command->words.push_back(std::move(text));
}

// Reads up to the command word and the word itself. False when the text ends before it.
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

void ReadPlain(WordSplitter* splitter, std::vector<Word>* words) {
  for (Word word; splitter->Next(&word);) words->push_back(std::move(word));
}

// Paths that the SDK puts between quotes are taken as they are; everything else is split by the rules. words: those
// that came before, of a shell command.
void ReadAssisted(WordSplitter* splitter, const Command& command, std::vector<Word>* words) {
  Word word;
  while (!splitter->AtQuote() && splitter->Next(&word)) words->push_back(std::move(word));
  const bool shell = command.name == kShell;
  const OperandForm form = shell ? FindDeviceCommand(*words).operands : FindAdbOperands(command.name);
  const size_t first = words->size();
  splitter->NextOperands(form, words);
  if (shell && form.quotes.opening == kDoubleQuotes.opening) {
    for (size_t i = first; i < words->size(); ++i) RemoveOwnQuotes(&(*words)[i].text);
  }
  while (shell ? splitter->NextVerbatim(&word) : splitter->Next(&word)) words->push_back(std::move(word));
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
    ReadAssisted(&splitter, command, &words);
  } else {
    ReadPlain(&splitter, &words);
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

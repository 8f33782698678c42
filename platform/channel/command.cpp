#include "platform/channel/command.h"

#include <algorithm>

#include "platform/channel/device_quoting.h"

namespace darokleim::channel {
namespace {

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

}  // namespace

Command ReadCommand(std::string_view arguments, Assist assist) {
  Command command;
  WordSplitter splitter(arguments);
  if (!ReadUpToCommandWord(&splitter, &command)) return command;

  const bool shell = command.name == "shell";
  const bool assisted = shell && assist == Assist::kOn;
  std::vector<Word> device_words;
  if (shell && command.words.back() != command.name) device_words = SplitWords(command.words.back());

  Word word;
  while (assisted ? splitter.NextAsMeant(&word) : splitter.Next(&word)) {
    command.words.push_back(assisted && word.quoted ? QuoteForDevice(word.text) : word.text);
    if (shell) device_words.push_back(std::move(word));
  }
  if (shell) command.device = FindDeviceCommand(device_words);
  if (assisted) command.line_ends = command.device.line_ends;
  return command;
}

}  // namespace darokleim::channel

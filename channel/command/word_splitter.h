// Splits an argument text into the words that adb is started with.
//
// The rules are those of a POSIX shell, less what must reach the device's shell untouched: a backslash outside
// quotes is an escape only before a blank, a quote or a backslash; `| * $ ; ( ) < > ~` mean nothing; a quote
// that is never closed is an ordinary character. Every text splits, in time linear in its length.
#ifndef DAROKLEIM_CHANNEL_COMMAND_WORD_SPLITTER_H
#define DAROKLEIM_CHANNEL_COMMAND_WORD_SPLITTER_H

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "channel/command/quoted_operands.h"

namespace darokleim::channel {

constexpr std::string_view kBlanks = " \t\n";

// Whether position is a blank or the end of text.
bool EndsWordAt(std::string_view text, size_t position);

struct Word {
  std::string text;     // quotes and escapes removed
  bool quoted = false;  // some of it, perhaps nothing, stood between quotes
};

class WordSplitter {
 public:
  explicit WordSplitter(std::string_view text) : rest_(text) {}

  // The next word by the rules above; false at the end of the text.
  bool Next(Word* word);

  // The next word as its writer meant it: a word that begins with a quote ends at the same quote before a
  // blank or the end, and everything between is the word, other quotes and backslashes included. For texts
  // made by putting a path between quotes without a look at what the path holds. The quotes that do so are
  // `""…""`, `"'…'"`, `'"…"'` (where both go) and `"…"`. A word that reads whole by the plain rules, or that
  // has no such end, is read by them.
  bool NextAsMeant(Word* word);

  // Whether the next word begins with a quote.
  bool AtQuote();
  // Appends the operands that come next, if they have this form; leaves the text as it is otherwise.
  void NextOperands(const OperandForm& form, std::vector<Word>* words);

 private:
  bool SkipBlanks();
  void ReadPlain(Word* word);
  bool ReadQuotedWhole(Word* word);
  bool ReadMeant(Word* word);

  std::string_view rest_;
  // For each kind of quote of NextAsMeant: no closing one stands in the rest, so looking again is useless.
  std::array<bool, 4> closed_no_more_ = {};
};

// Takes `'…'` or `"…"` off a text: quotes that were meant for the device's shell.
void RemoveOwnQuotes(std::string* text);

std::vector<Word> SplitWords(std::string_view text);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_COMMAND_WORD_SPLITTER_H

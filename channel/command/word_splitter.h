// Splits an argument text into the words that adb is started with.
//
// The rules are those of a POSIX shell, except for what must reach the device's shell unchanged: a backslash outside
// quotes is an escape only before whitespace, a quote or a backslash; `| * $ ; ( ) < > ~` have no meaning; a quote that
// is never closed is an ordinary character. Every text can be split, in time linear in its length.
#ifndef DAROKLEIM_CHANNEL_COMMAND_WORD_SPLITTER_H
#define DAROKLEIM_CHANNEL_COMMAND_WORD_SPLITTER_H

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "channel/command/quoted_operands.h"

namespace darokleim::channel {

constexpr std::string_view kWhitespace = " \t\n";

// Whether position is at whitespace or at the end of text.
bool EndsWordAt(std::string_view text, size_t position);

struct Word {
  std::string text;     // quotes and escapes removed
  bool quoted = false;  // part of it, perhaps an empty part, was between quotes
};

class WordSplitter {
 public:
  explicit WordSplitter(std::string_view text) : rest_(text) {}

  // The next word by the rules above; false at the end of the text.
  bool Next(Word* word);

  // The next word, what is between quotes taken verbatim: a word that begins with a quote ends at the same quote
  // before whitespace or the end, and everything between is the word, other quotes and backslashes included. For
  // texts made by putting a path between quotes without escaping. The quotes are `""…""`, `"'…'"`, `'"…"'` (where
  // both are removed) and `"…"`. A word that is complete by the plain rules, or that has no such end, is read by
  // the plain rules.
  bool NextVerbatim(Word* word);

  // Whether the next word begins with a quote.
  bool AtQuote();
  // Reads the operands that come next and appends them to words, if they have this form; reads nothing otherwise.
  void NextOperands(const OperandForm& form, std::vector<Word>* words);

 private:
  bool SkipWhitespace();
  void ReadPlain(Word* word);
  bool ReadQuotedWord(Word* word);
  bool ReadVerbatim(Word* word);

  std::string_view rest_;
  // For each kind of quote of NextVerbatim: the rest has no closing one, so that it need not be searched again.
  std::array<bool, 4> has_no_closing_ = {};
};

// Removes `'…'` or `"…"` around a text: quotes that were meant for the device's shell.
void RemoveOwnQuotes(std::string* text);

std::vector<Word> SplitWords(std::string_view text);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_COMMAND_WORD_SPLITTER_H

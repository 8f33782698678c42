// Splits an argument text into the words that adb is started with.
//
// The rules are those of a POSIX shell, less what must reach the device's shell untouched: a backslash outside
// quotes is an escape only before a blank, a quote or a backslash; `| * $ ; ( ) < > ~` mean nothing; a quote
// that is never closed is an ordinary character. Every text splits, in time linear in its length.
#ifndef DAROKLEIM_PLATFORM_CHANNEL_WORD_SPLITTER_H
#define DAROKLEIM_PLATFORM_CHANNEL_WORD_SPLITTER_H

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace darokleim::channel {

constexpr std::string_view kBlanks = " \t\n";

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

 private:
  bool SkipBlanks();
  void ReadPlain(Word* word);
  bool ReadQuotedWhole(Word* word);
  bool ReadMeant(Word* word);

  std::string_view rest_;
  // For each kind of quote of NextAsMeant: no closing one stands in the rest, so looking again is useless.
  std::array<bool, 4> closed_no_more_ = {};
};

std::vector<Word> SplitWords(std::string_view text);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_PLATFORM_CHANNEL_WORD_SPLITTER_H

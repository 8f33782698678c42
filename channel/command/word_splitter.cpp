#include "channel/command/word_splitter.h"

#include <algorithm>

namespace darokleim::channel {
namespace {

constexpr size_t kNotFound = std::string_view::npos;

bool IsWhitespace(char c) {
  return kWhitespace.find(c) != kNotFound;
}

// What a backslash outside quotes can escape.
bool CanBeEscaped(char c) {
  return IsWhitespace(c) || c == '\'' || c == '"' || c == '\\';
}

// Where the quote that text begins with is closed; kNotFound when it is not.
size_t FindClosingQuote(std::string_view text) {
  if (text.front() == '\'') return text.find('\'', 1);
  for (size_t i = 1; i < text.size(); ++i) {
    if (text[i] == '"') return i;
    if (text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == '"' || text[i + 1] == '\\')) ++i;
  }
  return kNotFound;
}

void UnescapeDoubleQuoted(std::string_view inside, std::string* text) {
  for (size_t i = 0; i < inside.size(); ++i) {
    if (inside[i] == '\\' && i + 1 < inside.size() && (inside[i + 1] == '"' || inside[i + 1] == '\\')) ++i;
    text->push_back(inside[i]);
  }
}

// Longest first: `""/a""` opens with two quotes, not with an empty pair.
constexpr std::array<QuotePair, 4> kQuotePairs = {
    {kDoubledDoubleQuotes, kSingleInDoubleQuotes, kDoubleInSingleQuotes, kDoubleQuotes}};

size_t FindClosingBeforeWhitespace(std::string_view text, const QuotePair& pair) {
  size_t at = text.find(pair.closing, pair.opening.size());
  while (at != kNotFound && !EndsWordAt(text, at + pair.closing.size())) at = text.find(pair.closing, at + 1);
  return at;
}

}  // namespace

bool EndsWordAt(std::string_view text, size_t position) {
  return position == text.size() || IsWhitespace(text[position]);
}

bool WordSplitter::SkipWhitespace() {
  rest_.remove_prefix(std::min(rest_.find_first_not_of(kWhitespace), rest_.size()));
  return !rest_.empty();
}

bool WordSplitter::Next(Word* word) {
  *word = {};
  if (!SkipWhitespace()) return false;
  ReadPlain(word);
  return true;
}

void WordSplitter::ReadPlain(Word* word) {
  while (!rest_.empty() && !IsWhitespace(rest_.front())) {
    const char c = rest_.front();
    if (c == '\'' || c == '"') {
      const size_t closing = FindClosingQuote(rest_);
      if (closing != kNotFound) {
        const std::string_view inside = rest_.substr(1, closing - 1);
        if (c == '\'') {
          word->text.append(inside);
        } else {
          UnescapeDoubleQuoted(inside, &word->text);
        }
        word->quoted = true;
        rest_.remove_prefix(closing + 1);
        continue;
      }
    } else if (c == '\\' && rest_.size() > 1 && CanBeEscaped(rest_[1])) {
      rest_.remove_prefix(1);
    }
    word->text.push_back(rest_.front());
    rest_.remove_prefix(1);
  }
}

bool WordSplitter::NextVerbatim(Word* word) {
  *word = {};
  if (!SkipWhitespace()) return false;
  if (!ReadQuotedWord(word) && !ReadVerbatim(word)) ReadPlain(word);
  return true;
}

bool WordSplitter::ReadQuotedWord(Word* word) {
  const char quote = rest_.front();
  if (quote != '\'' && quote != '"') return false;
  const size_t closing = FindClosingQuote(rest_);
  if (closing == kNotFound || !EndsWordAt(rest_, closing + 1)) return false;
  ReadPlain(word);
  RemoveOwnQuotes(&word->text);
  return true;
}

bool WordSplitter::ReadVerbatim(Word* word) {
  for (size_t i = 0; i < kQuotePairs.size(); ++i) {
    const QuotePair& pair = kQuotePairs[i];
    if (has_no_closing_[i] || rest_.substr(0, pair.opening.size()) != pair.opening) continue;
    const size_t closing = FindClosingBeforeWhitespace(rest_, pair);
    if (closing == kNotFound) {
      has_no_closing_[i] = true;
      continue;
    }
    word->text = rest_.substr(pair.opening.size(), closing - pair.opening.size());
    word->quoted = true;
    rest_.remove_prefix(closing + pair.closing.size());
    return true;
  }
  return false;
}

bool WordSplitter::AtQuote() {
  return SkipWhitespace() && (rest_.front() == '\'' || rest_.front() == '"');
}

void WordSplitter::NextOperands(const OperandForm& form, std::vector<Word>* words) {
  const QuotedOperands found = ReadQuotedOperands(rest_, form);
  for (const std::string_view operand : found.operands) words->push_back({std::string(operand), true});
  rest_.remove_prefix(found.length);
}

void RemoveOwnQuotes(std::string* text) {
  if (text->size() < 2 || text->front() != text->back()) return;
  if (text->front() == '\'' || text->front() == '"') *text = text->substr(1, text->size() - 2);
}

std::vector<Word> SplitWords(std::string_view text) {
  std::vector<Word> words;
  WordSplitter splitter(text);
  for (Word word; splitter.Next(&word);) words.push_back(std::move(word));
  return words;
}

}  // namespace darokleim::channel

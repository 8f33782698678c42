#include "tools/cli/command_line/shell_line.h"

namespace darokleim::cli {
namespace {

// What a backslash takes the meaning of inside of double quotes.
constexpr std::string_view kSpecialInQuotes = "\"\\$`";

class Splitter {
 public:
  explicit Splitter(std::string_view line) : line_(line) {}

  std::vector<ShellWord> Split() {
    Begin();
    for (; at_ < line_.size(); ++at_) Take(line_[at_]);
    words_.push_back(word_);
    return std::move(words_);
  }

 private:
  void Begin() { word_ = {{}, at_}; }

  void Take(char c) {
    if (c == word_.open_quote) {
      word_.open_quote = 0;
    } else if (word_.open_quote != '\'' && c == '\\' && Escapes()) {
      word_.text += line_[++at_];
    } else if (word_.open_quote == 0 && (c == '\'' || c == '"')) {
      word_.open_quote = c;
      word_.quote_at = at_;
    } else if (word_.open_quote == 0 && (c == ' ' || c == '\t')) {
      EndWord();
    } else {
      word_.text += c;
    }
  }

  bool Escapes() const {
    if (at_ + 1 == line_.size()) return false;
    return word_.open_quote == 0 || kSpecialInQuotes.find(line_[at_ + 1]) != std::string_view::npos;
  }

  void EndWord() {
    const bool is_there = at_ > word_.begin;
    if (is_there) words_.push_back(word_);
    ++at_;
    Begin();
    --at_;
  }

  std::string_view line_;
  std::size_t at_ = 0;
  ShellWord word_;
  std::vector<ShellWord> words_;
};

bool IsPlain(char c) {
  const bool is_letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
  return is_letter || std::string_view("_-./:=@%+,").find(c) != std::string_view::npos ||
         static_cast<unsigned char>(c) >= 0x80;
}

}  // namespace

std::vector<ShellWord> SplitShellLine(std::string_view line) {
  return Splitter(line).Split();
}

std::string QuotedFor(char open_quote, std::string_view text) {
  std::string quoted;
  for (const char c : text) {
    if (open_quote == '\'' && c == '\'') {
      quoted += "'\\''";
      continue;
    }
    const bool needs_backslash = open_quote == '"' ? kSpecialInQuotes.find(c) != std::string_view::npos
                                                   : open_quote == 0 && !IsPlain(c);
    if (needs_backslash) quoted += '\\';
    quoted += c;
  }
  return quoted;
}

}  // namespace darokleim::cli

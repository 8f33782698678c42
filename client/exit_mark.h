// The exit status of a script on phones that do not say it: the script is made to print it at its end.
#ifndef DAROKLEIM_CLIENT_EXIT_MARK_H
#define DAROKLEIM_CLIENT_EXIT_MARK_H

#include <optional>
#include <string>
#include <string_view>

namespace darokleim::client {

// A text that no output ends in by chance. Each call has one of its own.
class ExitMark {
 public:
  ExitMark();

  // What is run in place of the script. The script is quoted, so that nothing in it, an unclosed quote or `exit`, reaches
  // beyond its end.
  std::string Wrap(std::string_view script) const;
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

// Holds back as much of the output's end as the mark may take.
class ExitMarkReader {
 public:
  // through_terminal: line breaks come as CR LF and are made LF.
  ExitMarkReader(const ExitMark& mark, bool through_terminal)
      : mark_(mark.text()), through_terminal_(through_terminal) {}

  // The part of the output so far that is not the mark's for sure.
  std::string Pass(std::string_view data);
  // After the last piece: the status; nothing when the mark is missing.
  std::optional<int> Finish();
  // What came before the mark and was held back.
  std::string TakeRest() { return std::move(held_); }

 private:
  void Append(std::string_view data);

  std::string mark_;
  bool through_terminal_;
  bool carriage_return_ = false;  // at the end of the last piece, held back
  std::string held_;
};

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_EXIT_MARK_H

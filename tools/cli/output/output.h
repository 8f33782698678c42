// The tool's own standard output.
#ifndef DAROKLEIM_TOOLS_CLI_OUTPUT_OUTPUT_H
#define DAROKLEIM_TOOLS_CLI_OUTPUT_OUTPUT_H

#include <string>
#include <string_view>

namespace darokleim::cli {

enum class Colour { kFolder, kFaint, kGood, kBad };

class Output {
 public:
  // Does not own the descriptor.
  explicit Output(int descriptor);

  // Hands the bytes to the system before it returns. Throws when they cannot be written.
  void Write(std::string_view text);
  // The same for a piece of something long: not on a terminal, pieces are collected until there are many, or Flush.
  void Append(std::string_view text);
  void Flush();

  bool is_terminal() const { return is_terminal_; }

  // A name or another text of the device: byte for byte, but on a terminal without control characters.
  std::string Shown(std::string_view text) const;

  // The text in that colour where colours are shown: on a terminal, unless NO_COLOR is set.
  std::string Painted(Colour colour, std::string_view text) const;

 private:
  void HandOver(std::string_view text);

  int descriptor_;
  std::string collected_;
  bool is_terminal_;
  bool has_colours_;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_OUTPUT_OUTPUT_H

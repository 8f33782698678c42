#ifndef DAROKLEIM_TOOLS_CLI_OUTPUT_TABLE_H
#define DAROKLEIM_TOOLS_CLI_OUTPUT_TABLE_H

#include <string>
#include <utility>
#include <vector>

namespace darokleim::cli {

// Rows of text in aligned columns. Each character of a UTF-8 text counts as one place, colours as none.
class Table {
 public:
  void AddRow(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

  // A line for each row, without spaces at its end.
  std::string Text() const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_OUTPUT_TABLE_H

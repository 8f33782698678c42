// The lines that ls -l prints for regular files.
#ifndef DAROKLEIM_SRC_FILESYSTEM_LS_LINE_H
#define DAROKLEIM_SRC_FILESYSTEM_LS_LINE_H

#include <optional>
#include <string_view>

namespace darokleim::sdk {

// The columns of one line, as pieces of it.
struct LsLine {
  std::string_view size;  // decimal digits
  std::string_view time;  // YYYY-MM-DD HH:MM
  std::string_view name;  // with the spaces after it, and as ls escaped it
};

// Matches a whole line against
//     ^-[rwx-]{9}\s+\d+\s+\S+\s+\S+\s+(\d+)\s(\d{4}-\d{2}-\d{2}\s\d{1,2}:\d{1,2})\s+(.*)\s*$
// or, as old phones print no link count,
//     ^-[rwx-]{9}\s+\S+\s+\S+\s+(\d+)\s(\d{4}-\d{2}-\d{2}\s\d{1,2}:\d{1,2})\s+(.*)\s*$
// as std::regex_match does in the "C" locale, but in one pass and with a constant amount of stack.
class LsLineMatcher {
 public:
  // The text of a line that matched must live as long as the matcher.
  std::optional<LsLine> Match(std::string_view text);

 private:
  // What the line that matched last begins with, from the permissions to the first white-space character after the
  // group. Most lines begin like the line before.
  std::string_view usual_;
};

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_LS_LINE_H

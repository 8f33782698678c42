// Finds the lines by which adb itself says that it failed, in a text that comes in pieces.
#ifndef DAROKLEIM_CHANNEL_OUTPUT_FAILURE_LINES_H
#define DAROKLEIM_CHANNEL_OUTPUT_FAILURE_LINES_H

#include <string>
#include <string_view>

namespace darokleim::channel {

bool IsFailureLine(std::string_view line);

class FailureLineScanner {
 public:
  void Scan(std::string_view piece);
  bool Found() const { return found_ || IsFailureLine(line_begin_); }

 private:
  std::string line_begin_;  // of the line that the next piece continues, as much of it as can matter
  bool found_ = false;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_OUTPUT_FAILURE_LINES_H

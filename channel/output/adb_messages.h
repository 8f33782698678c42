// What adb itself says in the output of a command, apart from the answer: notices of a server that it starts, and
// failures. And the status that follows from them and from how adb ended.
#ifndef DAROKLEIM_CHANNEL_OUTPUT_ADB_MESSAGES_H
#define DAROKLEIM_CHANNEL_OUTPUT_ADB_MESSAGES_H

#include <string>
#include <string_view>

#include "channel/command/command.h"
#include "channel/process/child.h"
#include "channel/status.h"

namespace darokleim::channel {

// The length of the lines of notices that text begins with; the last of them may lack its line break. A line that
// reports a failure is not a notice.
size_t LengthOfLeadingNotices(std::string_view text);

// Whether more text could still add to the leading notices of this one: it ends inside a line that is a notice or
// may become one.
bool MayContinueNotices(std::string_view text);

// Whether adb says in this line that it failed.
bool IsFailureLine(std::string_view line);

// Finds failure lines in a text that arrives in pieces.
class FailureLineScanner {
 public:
  void Scan(std::string_view piece);
  bool Found() const { return found_ || IsFailureLine(line_begin_); }

 private:
  std::string line_begin_;  // of the line that the next piece continues, as much of it as can matter
  bool found_ = false;
};

// Phones since Android 7 pass the exit status of a shell command through adb, older ones never do, and the SDK's
// result codes are meant for the older way: where a command answers by text, the text decides unless adb itself
// failed, which a failure line says. Failure lines also decide where the exit status is not available. For a command
// that may fail without a word, the exit status decides unless the text states a failure that has a result code.
int StatusOf(const Command& command, const ExitOutcome& exit, std::string_view output);

// The same for output that is not kept. Here no text states a failure of the device's command.
int StatusOf(const Command& command, const ExitOutcome& exit, const FailureLineScanner& output);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_OUTPUT_ADB_MESSAGES_H

// What is done to the output of a command that comes in pieces: leading server notices are left out, line ends
// are converted.
#ifndef DAROKLEIM_CHANNEL_OUTPUT_STREAM_FILTER_H
#define DAROKLEIM_CHANNEL_OUTPUT_STREAM_FILTER_H

#include <string>
#include <string_view>

#include "channel/command/command.h"

namespace darokleim::channel {

class StreamFilter {
 public:
  explicit StreamFilter(const Command& command)
      : line_ends_(command.line_ends), leads_(!command.ReportsOnServer()) {}

  // What may be passed on now that piece has come; what depends on later pieces is kept back. The text lives
  // until the next call.
  std::string_view Pass(std::string_view piece);

  // What was kept back, at the end of the output.
  std::string_view Finish();

 private:
  void DropNotices();

  const LineEnds line_ends_;
  bool leads_;        // nothing but notices has come so far
  std::string kept_;  // not yet passed on
  std::string passed_;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_OUTPUT_STREAM_FILTER_H

// Processes the output of a stream piece by piece: removes leading server notices and converts line breaks.
#ifndef DAROKLEIM_CHANNEL_OUTPUT_STREAM_FILTER_H
#define DAROKLEIM_CHANNEL_OUTPUT_STREAM_FILTER_H

#include <string>
#include <string_view>

#include "channel/command/command.h"

namespace darokleim::channel {

class StreamFilter {
 public:
  explicit StreamFilter(const Command& command)
      : line_ends_(command.line_ends), at_start_(!command.ReportsOnServer()) {}

  // The output that may be passed on after piece; what depends on later pieces is kept. The text is valid until the
  // next call.
  std::string_view Pass(std::string_view piece);

  // What was kept, at the end of the output.
  std::string_view Finish();

 private:
  void DropNotices();

  const LineEnds line_ends_;
  bool at_start_;     // only notices have arrived so far
  std::string kept_;  // not yet passed on
  std::string passed_;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_OUTPUT_STREAM_FILTER_H

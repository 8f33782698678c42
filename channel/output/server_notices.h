// The notices by which adb says, before its own output, that it starts or replaces its server.
#ifndef DAROKLEIM_CHANNEL_OUTPUT_SERVER_NOTICES_H
#define DAROKLEIM_CHANNEL_OUTPUT_SERVER_NOTICES_H

#include <string_view>

namespace darokleim::channel {

// The length of the lines of notices that text begins with, the last of them perhaps without a line end. A line
// that reports a failure is none.
size_t LengthOfLeadingNotices(std::string_view text);

// Whether more text could still add to the leading notices of this one: it ends inside a line that is one or
// may become one.
bool MayContinueNotices(std::string_view text);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_OUTPUT_SERVER_NOTICES_H

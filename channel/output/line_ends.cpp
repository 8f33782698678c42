#include "channel/output/line_ends.h"

#include <algorithm>
#include <cstring>

namespace darokleim::channel {

size_t CollapseLineEnds(char* text, size_t length) {
  const char* const end = text + length;
  const char* from = text;
  char* to = text;
  while (from != end) {
    const size_t left = static_cast<size_t>(end - from);
    const void* found = memchr(from, '\r', left);
    const size_t plain =
        found == nullptr ? left : static_cast<size_t>(static_cast<const char*>(found) - from);
    if (to != from) memmove(to, from, plain);
    to += plain;
    from += plain;

    const char* const after = std::find_if(from, end, [](char c) { return c != '\r'; });
    if (after == end || *after != '\n') {
      const size_t kept = static_cast<size_t>(after - from);
      memmove(to, from, kept);
      to += kept;
    }
    from = after;
  }
  return static_cast<size_t>(to - text);
}

size_t CountLineFeeds(const char* text, size_t length) {
  return static_cast<size_t>(std::count(text, text + length, '\n'));
}

void ExpandLineEnds(char* text, size_t length, size_t line_feeds) {
  char* to = text + length + line_feeds;
  for (const char* from = text + length; to != from;) {
    const char c = *--from;
    *--to = c;
    if (c == '\n') *--to = '\r';
  }
}

}  // namespace darokleim::channel

// Converts the line breaks of a text in memory: CR LF to LF and back.
#ifndef DAROKLEIM_CHANNEL_OUTPUT_LINE_ENDS_H
#define DAROKLEIM_CHANNEL_OUTPUT_LINE_ENDS_H

#include <cstddef>

namespace darokleim::channel {

// Removes the carriage returns before each line feed, however many (old devices sometimes print CR CR LF). Returns the
// new length.
size_t CollapseLineEnds(char* text, size_t length);

size_t CountLineFeeds(const char* text, size_t length);

// Puts a carriage return before each of the line_feeds line feeds. There must be room for as many bytes more.
void ExpandLineEnds(char* text, size_t length, size_t line_feeds);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_OUTPUT_LINE_ENDS_H

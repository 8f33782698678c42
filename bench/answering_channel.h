// A command channel and a log that answer immediately, so that what the library itself does can be measured.
#ifndef DAROKLEIM_BENCH_ANSWERING_CHANNEL_H
#define DAROKLEIM_BENCH_ANSWERING_CHANNEL_H

#include <functional>
#include <string>
#include <string_view>

namespace darokleim::bench {

// What "the device" prints for an argument text. The channel hands out the text itself, not a copy of it.
inline std::function<std::string&(std::string_view arguments)> device_answer;

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_ANSWERING_CHANNEL_H

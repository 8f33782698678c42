// How applications call the state of a device.
#ifndef DAROKLEIM_SRC_CORE_CONNECTION_WORD_H
#define DAROKLEIM_SRC_CORE_CONNECTION_WORD_H

#include <string>

// "unauthor" for "unauthorized", "offline" for "offline", "author" for every other text.
std::string convert_connect_string(const std::string& state);

#endif  // DAROKLEIM_SRC_CORE_CONNECTION_WORD_H

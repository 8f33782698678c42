// The one way in which the SDK writes JSON.
#ifndef DAROKLEIM_SRC_FILESYSTEM_JSON_TEXT_H
#define DAROKLEIM_SRC_FILESYSTEM_JSON_TEXT_H

#include <json/value.h>

#include <string>

// Three blanks of indentation, no comments, else as JsonCpp writes by default: pure ASCII, and null for a
// value that nothing was put into.
std::string JsonToString(const Json::Value& value);

#endif  // DAROKLEIM_SRC_FILESYSTEM_JSON_TEXT_H

// JSON documents as the tool prints them, and as the library hands them out.
#ifndef DAROKLEIM_TOOLS_CLI_OUTPUT_JSON_H
#define DAROKLEIM_TOOLS_CLI_OUTPUT_JSON_H

#include <json/forwards.h>

#include <string>
#include <string_view>

namespace darokleim::cli {

// Indented by two spaces, with a line break at the end; pure ASCII.
std::string JsonText(const Json::Value& document);

// On one line, without a line break; pure ASCII.
std::string JsonLine(const Json::Value& document);

// On one line, with the bytes of its strings as they are, for the library.
std::string JsonArgument(const Json::Value& document);

// Throws ToolError, which names the document as `what`, for a text that is not JSON.
Json::Value ParseJson(std::string_view text, const std::string& what);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_OUTPUT_JSON_H

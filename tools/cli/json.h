#ifndef DAROKLEIM_TOOLS_CLI_JSON_H
#define DAROKLEIM_TOOLS_CLI_JSON_H

#include <json/value.h>

#include <string>

namespace darokleim::cli {

// The document, indented by two blanks, and a line end; pure ASCII.
std::string JsonText(const Json::Value& document);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_JSON_H

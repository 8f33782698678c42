// Compares what the tool prints with --json with docs/json.md.
#ifndef DAROKLEIM_TESTS_CLI_DOCUMENTED_JSON_H
#define DAROKLEIM_TESTS_CLI_DOCUMENTED_JSON_H

#include <json/value.h>

#include <string>

namespace darokleim::cli {

// Every member of the document is in that section ("ls", "devices --watch") or in "errors", and has the type that is stated
// there; every member that is not optional is present in each object that it belongs to.
void ExpectDocumented(const std::string& section, const Json::Value& document);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TESTS_CLI_DOCUMENTED_JSON_H

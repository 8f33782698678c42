// What the library's result codes mean, for people.
#ifndef DAROKLEIM_TOOLS_CLI_OUTPUT_RESULT_TEXT_H
#define DAROKLEIM_TOOLS_CLI_OUTPUT_RESULT_TEXT_H

#include <string>

namespace darokleim::cli {

struct ResultText {
  std::string name;     // "ADB_RESULT_CANNOT_CONNECT_DAEMON", "adb exit status 1"
  std::string meaning;  // and what helps: "adb could not reach its server. Start it with …"
};

ResultText TextOfResult(int code);

// Name, number, meaning, and what helps:
// "ADB_RESULT_CANNOT_CONNECT_DAEMON (27): adb could not reach its server. Start it with …"
std::string DescribeResult(int code);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_OUTPUT_RESULT_TEXT_H

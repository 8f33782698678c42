#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_LOG_LINES_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_LOG_LINES_H

#include <json/forwards.h>

#include <string>
#include <string_view>

#include "tools/cli/output/output.h"

namespace darokleim::cli {

// Prints the device's log, which comes in pieces of any size.
class LogLines {
 public:
  // The output must outlive this.
  LogLines(Output& output, bool as_json) : output_(output), as_json_(as_json) {}

  // Prints the lines that end in this piece. Throws as Output::Write.
  void Add(std::string_view piece);
  // Prints what came after the last line break.
  void Finish();

 private:
  std::string Printed(std::string_view line) const;

  Output& output_;
  bool as_json_;
  std::string rest_;
};

// Of a line in the format threadtime, "11-21 10:20:30.456  1234  1250 I Tag     : message": time, pid, tid, priority,
// tag and message. Of any other line, such as "--------- beginning of main", the line.
Json::Value ParseLogLine(std::string_view line);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_LOG_LINES_H

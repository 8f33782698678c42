#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_REPORT_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_REPORT_H

#include <string>

#include "tools/cli/commands/sdk/call.h"
#include "tools/cli/commands/sdk/call_log.h"
#include "tools/cli/output/document.h"
#include "tools/cli/output/output.h"

namespace darokleim::cli {

// What a call came to, to be shown.
struct CallReport {
  const SdkFunction& function;
  const CallResult& result;
  const CallLog& log;
  bool with_log;  // also the library's own lines
};

std::string ReportAsText(const CallReport& report, const Output& output);
void FillDocument(const CallReport& report, Document& document);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_REPORT_H

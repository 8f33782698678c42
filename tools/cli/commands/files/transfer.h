// What push and pull have in common.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_TRANSFER_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_TRANSFER_H

#include <json/forwards.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/cli/tool.h"

namespace darokleim::cli {

struct Transfer {
  std::string source;
  std::string target;
  std::uint64_t files = 0;
  std::uint64_t bytes = 0;
  double seconds = 0;
  bool skipped = false;  // the target was as new
};

// Prints a line about the transfer, unless that is unwanted.
void ReportTransfer(Tool& tool, const Transfer& transfer);

Json::Value TransfersJson(const std::vector<Transfer>& transfers);

class Stopwatch {
 public:
  double Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_TRANSFER_H

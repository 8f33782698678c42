#ifndef DAROKLEIM_TOOLS_CLI_MANUAL_PAGE_H
#define DAROKLEIM_TOOLS_CLI_MANUAL_PAGE_H

#include <CLI/App.hpp>
#include <string>

namespace darokleim::cli {

// The tool's manual page, darokleim.1, made from what --help tells of each command.
std::string ManualPage(const CLI::App& root, const std::string& version);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_MANUAL_PAGE_H

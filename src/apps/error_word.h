// Commands whose result is decided by the word "Error", not by the classifier.
#ifndef DAROKLEIM_SRC_APPS_ERROR_WORD_H
#define DAROKLEIM_SRC_APPS_ERROR_WORD_H

#include <string>

#include "src/core/call_log.h"

namespace darokleim::sdk {

// The meaning of a command that ran without any output.
enum class SilenceMeans { kFailure, kSuccess };

// Runs a command that cannot be cancelled and logs its failure. Returns the channel's status when it is not 0,
// ADB_RESULT_PROTOCOL_FAULT when the output holds "Error" (or silence means failure), else ADB_RESULT_OK.
int RunLookingForError(const CallLog& log, const std::string& args, SilenceMeans silence_means);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_APPS_ERROR_WORD_H
